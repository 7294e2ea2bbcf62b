# Everything here looks like a marker and is none.
a = 1  # <@output#a [0,5}>
b = 2  # <@output#b [-1,5]>
c = 3  # <@outputs#c>
d = 4  # <@output#d {"format":short}>
e = 5  # <@output#e {"format":"short"}
f = 6  # <@Output#f>
g = 7  # < @output#g>
h = 8  # <@text:anchor#h i>
i = 9  / <@output#i>
