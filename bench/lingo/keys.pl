my %list;
$list{"key$_"} = $_ for 1 .. 200000;
my $sum = 0;
$sum += $list{"key$_"} for 1 .. 200000;
print "$sum\n";
