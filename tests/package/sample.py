total = 1 + 2
print(total)  # <@output#shown [0,12] {"format":"short"}>
