my $sum = 0;
for my $i (1 .. 3000000) { $sum = $sum + $i % 7; }
print "$sum\n";
