package Adder;
sub new { return bless {sum => 0}, shift }
sub add { my ($self, $number) = @_; $self->{sum} = ($self->{sum} + $number) % 1000003 }
package main;
my $o = Adder->new;
$o->add($_) for 1 .. 500000;
print $o->{sum}, "\n";
