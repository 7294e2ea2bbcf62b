module Columns exposing (main)

import Html exposing (Html, text)


{-<@text:anchor#overview>-}
type alias Column =
    { title : String, width : Int }


columns : List Column
columns =
    [ Column "name" 12 -- <@control:slider#width [20,22] {"min":1,"max":40}>
    , Column "size" 8
    ]

-- <@task#sum>
gaps = 2 * (List.length columns - 1)
total = List.sum (List.map .width columns) + gaps -- <@output#total [0,5] {"format":"short"}>
-- <@task#sum>

main : Html msg
main =
    text (String.fromInt total)

-- <@appendix>
-- <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
