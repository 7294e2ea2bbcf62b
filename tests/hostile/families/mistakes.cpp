#include "hostile/families.hpp"

namespace hostile {

// Text that is almost a marker, for which `check` looks for a repair.
std::vector<Family> mistakeFamilies() {
  return {
      repeated("misspelt elements", u"", u"# <@tsak#t$>\n"),
      repeated("misspelt elements with partners", u"", u"# <@tsak#t$>\n# <@task#t$>\n"),
      repeated("misspelt elements on a line", u"", u"# <@tsak#t$> "),
      repeated("misspelt elements of a long id", u"", u"# <@tsak#aaaaaaaaaaaaaaaaaaaaaaaaaaaa$>\n"),
      repeated("markers without leaders", u"", u"x <@text:anchor#t$>\n"),
      repeated("markers without leaders on a line", u"", u"x <@text:anchor#t$> "),
      repeated("bad ranges", u"", u"# <@output#t$ [0,5}>\n"),
      repeated("damaged openings", u"", u"# @text:anchor#t$> # <text:anchor#u$>\n"),
      repeated("damaged openings on a line", u"", u"# @text:anchor#t$> "),
      repeated("markers that continue on the next line", u"",
               u"# <@output#t$ [0,1]\n#  {\"a\":1}>\n"),
      repeated("early ends on a line", u"", u"# <@text:anchor#t$>. "),
      repeated("markers without an end", u"", u"# <@text:anchor#t$\n"),
      repeated("blanks in openings", u"", u"# < @task#t$ >\n"),
      repeated("data in single quotes", u"", u"# <@output#t$ [0,1] {'a':1}>\n"),
      repeated("settings that are misspelt", u"# <@task#a>\nx\n# <@task#a>\n# <@appendix>\n",
               u"# <@task#t$ {\"txet\":\"x\",\"colapsed\":true}>\n"),
      repeated("entries of misspelt ids", u"# <@task#a>\nx\n# <@task#a>\n# <@appendix>\n",
               u"# <@task#$a {\"text\":\"x\"}>\n"),
      {"markers and entries whose ids are alike",
       [](std::size_t size) {
         return repeated("", u"", u"# <@task#$x>\nx\n# <@task#$x>\n").make(size / 2) +
                repeated("", u"# <@appendix>\n", u"# <@task#x$ {\"text\":\"x\"}>\n").make(size / 2);
       }},
  };
}

}  // namespace hostile
