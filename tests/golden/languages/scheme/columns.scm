(import (scheme base) (scheme write))

;; <@text:anchor#overview>
(define default-width 12) ; <@control:slider#width [22,24] {"min":1,"max":40}>

(define (column title . width)
  (cons title (if (null? width) default-width (car width))))

(define columns
  (list (column "name") (column "size" 8) (column "date")))

;; <@task#sum>
(define gaps (* 2 (- (length columns) 1)))
(define total (apply + gaps (map cdr columns))) ; <@output#total [8,13] {"format":"short"}>
;; <@task#sum>

(display total)
(newline)
;; <@appendix>
;; <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
