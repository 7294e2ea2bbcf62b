# <@task#lonely>
a = 1  # <@output#a [0,5}>
b = 2  # <@outputs#b [0,1]>
"""
 * <@output#c [3,5]>
"""
d = 4  # <@output#d [0,1]> <@text:anchor#d>
# <@text:anchor#here>
# <@text:anchor#here>
print("# <@text:anchor#quoted>")
e = 5  # <@control:slider#e [0,1] {"min":0}>
f = "🏆"  # <@output#f [5,6]>
# <@text:ancor#g>
# <@task#t>
g = 1
# <@task#t>
# <@appendix>
# <@task#t {"text":"T","collapsed":true}>
