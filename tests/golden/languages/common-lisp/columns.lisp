;;;; <@text:anchor#overview>
(defpackage :columns
  (:use :common-lisp)
  (:export #:column #:total))
(in-package :columns)

(defparameter *default-width* 12) ; <@control:slider#width [30,32] {"min":1,"max":40}>

(defstruct column
  title
  (width *default-width*))

(let* ((columns (list (make-column :title "name")
                      (make-column :title "size" :width 8)))
       ;; <@task#sum>
       (gaps (* 2 (1- (length columns))))
       (total (reduce #'+ columns :key #'column-width :initial-value gaps))) ; <@output#total [8,13] {"format":"short"}>
  ;; <@task#sum>
  (format t "~d columns, ~d characters~%" (length columns) total))
;;; <@appendix>
;;; <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
