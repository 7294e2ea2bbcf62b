#include "hostile/families.hpp"

namespace hostile {

// The appendix, and the tasks that have entries.
std::vector<Family> appendixFamilies() {
  return {
      repeated("entries without markers", u"# <@appendix>\n", u"# <@task#t$ {\"text\":\"x\"}>\n"),
      repeated("equal entries", u"# <@appendix>\n", u"# <@task#t {\"text\":\"x\"}>\n"),
      repeated("damaged entries", u"# <@appendix>\n", u"# <@task#t$ {\"text\":x}>\n"),
      repeated("similar ids in the appendix", u"# <@appendix>\n",
               u"# <@task#$x {}>\n# <@task#x$ {}>\n"),
      repeated("text in the appendix", u"# <@appendix>\n", u"x\n"),
      repeated("empty lines in the appendix", u"# <@appendix>\n", u"\n"),
      repeated("appendices in the appendix", u"# <@appendix>\n", u"# <@appendix>\n"),
      repeated("appendix lines that are damaged", u"# <@apendix>\n", u"# <@task#t$>\n"),
      repeated("appendix lines with text", u"", u"x # <@appendix>\n"),
      repeated("blanks, then appendix lines", u"                ", u"#<@appendix> "),
      repeated("a marker on the appendix line", u"# <@appendix> ", u"# <@task#t$> "),
      repeated("settings that do not exist", u"# <@appendix>\n# <@task#t {\"text\":\"\"",
               u",\"t$\":1", u"}>\n"),
      repeated("an entry of a task with a long text",
               u"# <@task#a>\nx\n# <@task#a>\n# <@appendix>\n# <@task#a {\"text\":\"", u"aaaaaaaa",
               u"\"}>\n"),
      repeated("an entry of a task with a wide array",
               u"# <@task#a>\nx\n# <@task#a>\n# <@appendix>\n# <@task#a {\"outputs\":[0", u",0",
               u"]}>\n"),
      repeated("an entry of a task with a map",
               u"# <@task#a>\nx\n# <@task#a>\n# <@appendix>\n"
               u"# <@task#a {\"variablesMap\":{\"a\":\"b\"",
               u",\"k$\":\"v\"", u"}}>\n"),
      repeated("an entry of an unpaired marker with a wide array",
               u"# <@task#a>\n# <@appendix>\n# <@task#a {\"outputs\":[0", u",0", u"]}>\n"),
      {"markers of one id, and an entry with a wide array",
       [](std::size_t size) {
         // Markers in the first half, the data of their entry in the second one.
         fl::i18n::ustring text;
         while (text.size() < size / 2) text += u"# <@task#a>\n";
         text += u"# <@appendix>\n# <@task#a {\"outputs\":[0";
         while (text.size() < size) text += u",0";
         return text + u"]}>\n";
       }},
      {"tasks with entries",
       [](std::size_t size) {
         return repeated("", u"", u"# <@task#t$>\n# <@task#t$>\n").make(size / 2) +
                repeated("", u"# <@appendix>\n",
                         u"# <@task#t$ {\"taskClassDefFile\":\"a.json\",\"uniqueId\":\"t$\","
                         u"\"text\":\"x\",\"run\":\"auto\",\"collapsed\":\"false\"}>\n")
                    .make(size / 2);
       }},
      {"tasks with entries in descending order",
       [](std::size_t size) {
         return repeated("", u"", u"# <@task#t$>\n# <@task#t$>\n").make(size / 2) +
                repeated("", u"# <@appendix>\n", u"# <@task#t^ {\"text\":\"x\"}>\n").make(size / 2);
       }},
      {"unpaired markers with entries",
       [](std::size_t size) {
         return repeated("", u"", u"# <@task#t$>\n").make(size / 2) +
                repeated("", u"# <@appendix>\n", u"# <@task#t$ {\"text\":\"x\"}>\n").make(size / 2);
       }},
  };
}

}  // namespace hostile
