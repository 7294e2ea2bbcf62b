print("# <@task#a>")
"""
# <@task#b>
# <@text:anchor#c>
"""
