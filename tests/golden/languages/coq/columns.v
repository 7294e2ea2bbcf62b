(** <@text:anchor#overview> *)
Require Import List Arith.
Import ListNotations.

Definition default_width := 12. (* <@control:slider#width [28,30] {"min":1,"max":40}> *)

Definition columns : list nat := [default_width; 8; default_width].

(* <@task#sum> *)
Definition gaps (l : list nat) := 2 * (length l - 1).
Definition total (l : list nat) := fold_right plus (gaps l) l. (* <@output#total [11,16] {"format":"short"}> *)
(* <@task#sum> *)

Lemma gaps_of_one : forall n, gaps [n] = 0.
Proof.
  intros n. reflexivity.
Qed.

Compute total columns.
(* <@appendix> *)
(* <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}> *)
