#!/usr/bin/perl
use strict;
use warnings;
use List::Util qw(sum);

# <@text:anchor#overview>
my $default_width = 12;    # <@control:slider#width [20,22] {"min":1,"max":40}>

my %width_of = (
    name => $default_width,
    size => 8,
    date => $default_width,
);
# <@task#sum>
my $gaps = 2 * ( keys(%width_of) - 1 );
my $total = $gaps + sum( values %width_of );    # <@output#total [4,9] {"format":"short"}>
# <@task#sum>
printf "%d columns, %d characters\n", scalar( keys %width_of ), $total;

# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
