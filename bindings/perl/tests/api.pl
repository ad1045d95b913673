# Walks the table of the C API and proves that this binding declares and calls all of it.
use v5.36;
use Corvale;
use File::Temp qw(tempdir);

my (%called, @functions, %table, $checked);

sub expect ($got, $wanted, $what) { die "$what: got '$got', wanted '$wanted'\n" unless $got eq $wanted }

sub content ($path) {
    open my $file, '<', $path or die "$path: $!\n";
    local $/;
    return <$file>;
}

# All fields as one text; reals by their bits.
sub shown (%v) {
    my $bits = sub (@reals) { map { unpack 'H16', pack 'd>', $_ } @reals };
    return join '|', map { "$_=" . join ' ', /d/ ? $bits->(ref $v{$_} ? $v{$_}->@* : $v{$_}) : ref $v{$_} ? $v{$_}->@* : $v{$_} }
        sort keys %v;
}

for (split /\n/, content($ENV{CORVALE_INTERFACE})) {
    if (/^function (\w+) (\w+)$/) { push @functions, $1; $table{$1} = [$2] }
    elsif (/^argument (.+)$/) { push $table{$functions[-1]}->@*, $1; ++$checked }
    else { /^(#.*)?$/ or die "unreadable line of the table: $_\n" }
}
expect(join(' ', sort keys %Corvale::DECLARATIONS), join(' ', sort @functions), 'functions');
for my $name (@functions) {
    my ($result, @declared) = $Corvale::DECLARATIONS{$name}->@*;
    expect(join("\n", $result, map { join ' ', $_->@* } @declared), join("\n", $table{$name}->@*), $name);
}

my $corvale = Corvale->new;
for my $name (keys %$corvale) {
    my $call = $corvale->{$name};
    $corvale->{$name} = sub { $called{$name} = 1; $call->(@_) };
}

# That a call fails with this message of the library, or is refused where there is none.
sub fails ($what, $message, $call) {
    die "$what: no failure\n" if eval { $call->(); 1 };
    my $error = $@;
    if (defined $message) { expect(ref $error && $error->message, $message, $what) }
    else { expect(ref $error, '', $what) }
}

sub modes { join ' ', $corvale->dup_key_mode, $corvale->all_key_mode, $corvale->elset_key_mode }

$corvale->init;
expect(substr($corvale->info, 0, 41), 'Arvenit Corvale - Version: v9.4 - Build: ', 'info');
expect($corvale->init_dll_names, '', 'init_dll_names');

$corvale->set_dup_key_mode(1);
$corvale->set_all_key_mode(1);
expect(modes(), '1 1 0', 'modes set');
$corvale->set_elset_key_mode(1);
$corvale->reset_all_key_mode;
expect(modes(), '0 0 1', 'modes reset');
$corvale->set_elset_key_mode(0);
my $reason = 'SetDupKeyMode: invalid input value for DUPLICATION key mode.';
fails('mode 2', $reason, sub { $corvale->set_dup_key_mode(2) });
expect($corvale->last_err_msg, $reason, 'last_err_msg');

my $folder = tempdir(CLEANUP => 1);
$reason = 'FileOpen: Unable to open file "no such file" for reading.';
$corvale->open_log_file("$folder/log");
$corvale->log_message('pass 1 of 3');
fails('missing file', $reason, sub { $corvale->load_file('no such file') });
$corvale->close_log_file;
expect($corvale->last_info_msg . $corvale->last_err_msg, 'pass 1 of 3', 'messages');
expect(content("$folder/log"), sprintf("%-128s\nError-%s\n", 'pass 1 of 3', $reason), 'log');
fails('a folder as log', 'OpenLogFile: log file failed to open.', sub { $corvale->open_log_file($folder) });
$corvale->close_log_file;

$corvale->load_file($ENV{CORVALE_INPUT});
expect(modes(), '0 1 1', 'modes loaded');
my @values = $corvale->moic_data(9);
expect("@values[0 .. 2, 6 .. 8]", '6378.135 398600.8 0.0010826158 0.25 0 1e-12', 'values');
expect(join('', $corvale->moic_data(129)), '0' x 129, '129 values');
expect(scalar(my @none = $corvale->moic_data(0)), 0, 'no values');

my ($imax, $lmax, $imin, $lmin) = (2147483647, 9223372036854775807, -2147483648, -9223372036854775807 - 1);
my %given = (
    ch => 'A', i => $imax, l => $lmax, d => 0.1, text => '  text', i3 => [$imax, 2, -3], l3 => [$lmax, 5, -6],
    d3 => [-0.0, 5e-324, 1e308], i6 => [$imin, 8, 9, 10, 11, $imax], l6 => [$lmin, 14, 15, 16, 17, $lmax],
    d6 => [0.2, 0.3, 0.4, 0.5, 0.6, 0.7]);
my $shown = shown(%given);  # before a call could write to it
expect(shown($corvale->test_interface(%given)), $shown, 'test_interface');
expect(unpack('H16', pack 'd>', $given{d3}[0]), '8000000000000000', 'the sign of zero');
my %wanted = (
    ch => 'Z', i => $imin, l => $lmin + 1, d => 0.1 + 42.123456, text => "It doesn't matter what your string was.",
    i3 => [$imin, 3, -2], l3 => [$lmin + 1234567890123456788, 1234567890123456794, 1234567890123456783],
    d3 => [map { $_ + 42.0 } $given{d3}->@*], i6 => [$imin + 1, 9, 10, 11, 12, $imin],
    l6 => [$lmin + 6, 20, 21, 22, 23, $lmin + 5], d6 => [map { $_ + 7.6 } $given{d6}->@*]);
expect(shown($corvale->test_interface2(%given)), shown(%wanted), 'test_interface2');
expect(shown($corvale->test_interface3(%given{qw(i3 i6)})),
       shown(i3 => [-4, 8, -12], i6 => [$imin, 40, 45, 50, 55, $imax - 4]), 'test_interface3');

my $fits = 'n' x 512;
for my $text (' blank', "tab\t", "\xe9t\xe9", "\x{141}", "del\x7f", "nul\0", "line\n", "${fits}n") {
    fails("name '$text'", undef, sub { $corvale->load_file($text) });
    fails("log '$text'", undef, sub { $corvale->open_log_file($text) });
    fails("message '$text'", undef, sub { $corvale->log_message($text) });
}
fails('129 characters', undef, sub { $corvale->log_message('n' x 129) });
for my $field ([i => 2**31], [i => 0.5], [i => 'x'], [l => 2**63], [ch => "\x{141}"], [i3 => [1, 2]], [l6 => [1 .. 7]], [d3 => 1]) {
    fails("$field->[0] $field->[1]", undef, sub { $corvale->test_interface(%given, @$field) });
    fails("$field->[0] $field->[1] in place", undef, sub { $corvale->test_interface2(%given, @$field) });
}
fails('count -1', undef, sub { $corvale->moic_data(-1) });
fails('count 1.5', undef, sub { $corvale->moic_data(1.5) });
fails('empty name', 'FileOpen: File name is empty.', sub { $corvale->load_file('') });
fails('512 characters', 'FileOpen: Unable to open file "' . 'n' x 97, sub { $corvale->load_file($fits) });
fails($_, undef, sub { Corvale->new($_) }) for 'no-such.so', 'libc.so.6';

expect(join(' ', sort keys %called), join(' ', sort @functions), 'functions called');
printf "Perl: %d of 20 functions called, %d arguments checked, ok\n", scalar keys %called, $checked;
