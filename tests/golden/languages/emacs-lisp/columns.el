;;; columns.el --- Adds up the widths of columns -*- lexical-binding: t -*-

;;; Code:
;; <@text:anchor#overview>
(require 'seq)

(defcustom columns-default-width 12 ; <@control:slider#width [33,35] {"min":1,"max":40}>
  "The width of a column without a width."
  :type 'integer
  :group 'columns)

(defun columns-sum (widths)
  "Return the sum of WIDTHS and the gaps between them."
  ;; <@task#sum>
  (let* ((gaps (* 2 (1- (length widths))))
         (total (seq-reduce #'+ widths gaps))) ; <@output#total [10,15] {"format":"short"}>
    ;; <@task#sum>
    (message "%d characters" total)
    total))

(provide 'columns)
;;; columns.el ends here
;; <@appendix>
;; <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
