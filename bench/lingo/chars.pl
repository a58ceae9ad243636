my $s = "abcdefghij" x 65536;
my $count = 0;
for my $i (0 .. length($s) - 1) { $count++ if substr($s, $i, 1) eq "c"; }
print "$count\n";
