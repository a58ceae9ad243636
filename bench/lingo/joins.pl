my $s = "";
for my $i (1 .. 500000) { $s .= "piece" . $i; }
print length($s), "\n";
