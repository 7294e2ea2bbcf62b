"""Fits a straight line to measured points."""
# <@text:anchor#data>
import numpy as np

x = np.array([0.0, 1.0, 2.0, 3.0])
y = np.array([0.1, 0.9, 2.1, 2.9])

# <@text:anchor#model>
degree = 1  # <@control:slider#degree [9,10] {"min":1,"max":3,"step":1}>
slope, offset = np.polyfit(x, y, degree)
print(slope)  # <@output#slope [6,11] {"format":"short"}>
print(offset)  # <@output#offset [6,12] {"format":"short"}>

# A range beyond the line, one that touches its own marker, an empty one:
total = slope + offset  # <@output#far [0,400]>
total *= 2  # <@output#touching [0,13]>
total -= 1  # <@output#empty [4,4]>
