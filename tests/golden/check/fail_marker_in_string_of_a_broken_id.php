<?php
// <@task#"fit
it">
$a = 1; // <@text:anchor#one>
$b = "2"; // <@text:anchor#two>
// <@task#"fit it">
// <@appendix>
// <@task#"fit it" {"text":"Fit"}>
