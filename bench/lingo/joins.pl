my $s = "";
for my $i (1 .. 100000) { $s .= "piece" . $i; }
print length($s), "\n";
