<?php
declare(strict_types=1);

/* <@text:anchor#overview> */
const DEFAULT_WIDTH = 12; // <@control:slider#width [22,24] {"min":1,"max":40}>

final class Column
{
    public function __construct(
        public readonly string $title,
        public readonly int $width = DEFAULT_WIDTH,
    ) {}
}

$columns = [new Column('name'), new Column('size', 8), new Column('date')];
# <@task#sum>
$gaps = 2 * (count($columns) - 1);
$total = $gaps + array_sum(array_column($columns, 'width')); // <@output#total [1,6] {"format":"short"}>
# <@task#sum>
printf("%d columns, %d characters\n", count($columns), $total);
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
