(ns tables.columns
  (:require [clojure.string :as string]))

;; <@text:anchor#overview>
(def default-width 12) ; <@control:slider#width [19,21] {"min":1,"max":40}>

(defn column
  ([title] (column title default-width))
  ([title width] {:title title :width width}))

(def columns [(column "name") (column "size" 8) (column "date")])

;; <@task#sum>
(def gaps (* 2 (dec (count columns))))
(def total (apply + gaps (map :width columns))) ; <@output#total [5,10] {"format":"short"}>
;; <@task#sum>

(println (string/join " " (map :title columns)) total)
;; <@appendix>
;; <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
