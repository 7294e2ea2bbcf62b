#include "hostile/families.hpp"

namespace hostile {

// Task markers: pairs, groups of one id, tasks within tasks, ids that are alike.
std::vector<Family> taskFamilies() {
  return {
      repeated("task markers of one id", u"", u"# <@task#a>\n"),
      repeated("task markers without id", u"", u"# <@task>\n"),
      repeated("task markers without partners", u"", u"# <@task#t$>\n"),
      repeated("similar ids", u"", u"# <@task#$x>\n# <@task#x$>\n"),
      repeated("ids that differ in case", u"", u"# <@task#t$>\n# <@task#T$>\n"),
      repeated("tasks", u"", u"# <@task#t$>\nx\n# <@task#t$>\n"),
      repeated("tasks with long ids", u"",
               u"# <@task#\"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa$\">\n"
               u"# <@task#\"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa$\">\n"),
      repeated("tasks in a task", u"# <@task#a>\n", u"# <@task#t$>\n# <@task#t$>\n",
               u"# <@task#a>\n"),
      repeated("nested tasks", u"", u"# <@task#t$>\n", u"# <@task#t10000000>\n"),
      repeated("tasks that overlap", u"", u"# <@task#t$>\n# <@task#t^>\n"),
      repeated("the same id again and again in a task", u"# <@task#a>\n", u"# <@task#b>\n",
               u"# <@task#a>\n"),
      repeated("unpaired markers in a task", u"# <@task#a>\n", u"# <@task#t$>\n", u"# <@task#a>\n"),
      repeated("empty tasks", u"", u"# <@task#t$>\n\n# <@task#t$>\n"),
      repeated("tasks on one line each", u"", u"# <@task#t$> # <@task#t$>\n"),
      repeated("task markers that are ignored", u"",
               u"# <@task#t$> # <@task#u$>\nx\n# <@task#t$>\n"),
      repeated("task markers on a line", u"", u"# <@task#t$> "),
      repeated("task markers of one id on a line", u"", u"# <@task#a> "),
      repeated("task markers of one id on a line, and a second line", u"# <@task#a>\n",
               u"# <@task#a> "),
      repeated("a line of task markers in a task", u"# <@task#a>\n", u"# <@task#t$> ",
               u"\n# <@task#a>\n"),
      repeated("a long task", u"# <@task#a>\n", u"x\n", u"# <@task#a>\n"),
      repeated("a long task that is not closed", u"# <@task#a>\n", u"x\n"),
      repeated("a task of marked lines", u"# <@task#a>\n",
               u"x # <@output#t$ [0,1]> # <@text:anchor#b$>\n", u"# <@task#a>\n"),
      repeated("anchors on the lines that open tasks", u"",
               u"# <@task#t$> # <@text:anchor#a$>\n# <@task#t$>\n"),
      repeated("markers cut off in the id", u"# <@task#t1>\n", u"# <@task#t$\n"),
      repeated("partners that end early", u"", u"# <@task#t$>x\n# <@task#t$x>\n"),
      repeated("escaped tasks", u"", u"# <@task#t$>\n%%\\ <@task#t$>\n"),
      run("tasks with a long id", u"# <@task#b>\n# <@task#b>\n# <@task#", u'a', u">\n"),
  };
}

}  // namespace hostile
