function total = columns(titles)
%COLUMNS Add up the widths of the columns of a table.
%%<@text:anchor#overview>
defaultWidth = 12; % <@control:slider#width [15,17] {"min":1,"max":40}>

widths = repmat(defaultWidth, 1, numel(titles));
for k = 1:numel(titles)
    if strcmp(titles{k}, 'size')
        widths(k) = 8;
    end
end
% <@task#sum>
gaps = 2 * (numel(widths) - 1);
total = sum(widths) + gaps; % <@output#total [0,5] {"format":"short"}>
% <@task#sum>
fprintf('%d columns, %d characters\n', numel(widths), total);
end
% <@appendix>
% <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
