/* <@text:anchor#results> the results */
int x; /* <@text:anchor#b>
int y; /* fine */
/* <@text:anchor#c> *
/* <@text:anchor#c2> /
/** <@text:anchor#d>  */ int z; /* <@text:anchor#e> x/
/* <@text:anchor#f>
   goes on
 */
{- <@text:anchor#g>
(* <@text:anchor#h>
let x = 1 (* one *)
*)
<!-- <@text:anchor#i> ->
<!-- <@text:anchor#j> --
/* <@text:anchor#k>the results */
/* <@text:anchor#l>> */
