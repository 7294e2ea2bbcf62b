%% A counter process.
-module(counter).
-export([start/0, loop/1]).

%% <@text:anchor#start>
start() -> spawn(fun() -> loop(0) end).

loop(Count) ->
    receive
        increment -> loop(Count + 1);
        {read, Caller} -> Caller ! Count, loop(Count)  %%% <@output#count [35,40]>
    end.
