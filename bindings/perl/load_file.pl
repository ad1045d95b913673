#!/usr/bin/env perl
# Loads an input file and prints what its cards set: perl -Ilib load_file.pl INPUT-FILE
use v5.36;
use Corvale;

sub show ($name) {
    my $corvale = Corvale->new;
    $corvale->load_file($name);
    printf "element-set key mode %d, all-key mode %d\n", $corvale->elset_key_mode, $corvale->all_key_mode;
    my @values = $corvale->moic_data(128);
    for my $k (0 .. $#values) {
        printf "MOIC(%d) = %.17g\n", $k + 1, $values[$k] if $values[$k] != 0;
    }
}

if (!eval { show($ARGV[0] // die "usage: load_file.pl INPUT-FILE\n"); 1 }) {
    chomp(my $reason = "$@");
    say STDERR $reason;
    exit 2;
}
