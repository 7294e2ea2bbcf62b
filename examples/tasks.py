"""Tasks of every sort, and what becomes of each."""
# <@task#load>  # <@text:anchor#loading>
import csv
rows = list(csv.reader(open("points.csv")))
# <@task#load>

points = [(float(a), float(b)) for a, b in rows]  # <@task#convert> # <@task#convert>

# <@task#plot>
import matplotlib.pyplot as plt
# <@task#zoom>
plt.plot(*zip(*points))
# <@task#plot>
plt.xlim(0, 1)
# <@task#zoom>

# <@task#lonely>
print(len(points))

# <@task#thrice>
# <@task#thrice>
# <@task#thrice>

# <@task#"größe"> # <@text:anchor#size>
size = len(points)  # <@output#size [0,4]>
# <@task#"größe">
# <@appendix>
# <@task#load {"uniqueId":"load","taskClassDefFile":"import.json","text":"Import data","run":"auto","autorun":"true","collapsed":"false","outputs":"rows","variablesMap":"{\"rows\":\"rows\"}","appState":"{\"file\":\"points.csv\"}","view":"code"}>
# <@task#convert {"uniqueId":"convert","text":"Convert","collapsed":true,"extra":[1,2.5,null]}>
# <@task#zoom {"uniqueId":"zoom","depth":3}>
# <@task#lonely {"uniqueId":"lonely","text":"Alone"}>

# <@task#"größe" {"uniqueId":"größe-1","text":"Größe der Daten – 数据大小 📏","run":"manual"}>
