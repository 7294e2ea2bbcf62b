print("# <@text:anchor#a>")
print('# <@text:anchor#b>', "\"# <@text:anchor#c>")
x = "a"  # "a" <@text:anchor#d>
"""
# <@text:anchor#e>
\"""
# <@text:anchor#f>
"""  # <@text:anchor#g>
y = 'it'  # it's # <@text:anchor#h>
z = r"\"  # <@text:anchor#i>"
