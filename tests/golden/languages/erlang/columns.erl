%%% <@text:anchor#overview>
-module(columns).
-export([main/0, total/1]).

-record(column, {title, width = 12}). % <@control:slider#width [32,34] {"min":1,"max":40}>

columns() ->
    [#column{title = "name"},
     #column{title = "size", width = 8}].

%% <@task#sum>
gaps(Columns) -> 2 * (length(Columns) - 1).
total(Columns) -> lists:sum([C#column.width || C <- Columns]) + gaps(Columns). % <@output#total [0,5] {"format":"short"}>
%% <@task#sum>

main() ->
    Columns = columns(),
    io:format("~b columns, ~b characters~n", [length(Columns), total(Columns)]).
%% <@appendix>
%% <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
