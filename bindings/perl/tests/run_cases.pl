# Answers the cases of tests/bindings/check.py with this binding.
use v5.36;
use Corvale;

my %DECODE = (
    i => sub ($digits) { 0 + $digits },
    l => sub ($digits) { 0 + $digits },
    r => sub ($bits) { unpack 'd>', pack 'H16', $bits },
    c => sub ($code) { chr $code },
    x => sub ($text) { my $bytes = pack 'H*', $text; utf8::decode($bytes); $bytes },
    n => sub ($none) { undef },
);

sub decoded ($token) {
    my @elements = map { $DECODE{substr $_, 0, 1}->(substr $_, 1) } split /,/, $token;
    return @elements == 1 ? $elements[0] : \@elements;
}

sub text (@texts) { map { 'x' . unpack 'H*', $_ } @texts }
sub reals (@reals) { map { 'r' . unpack 'H16', pack 'd>', $_ } @reals }

my @FIELDS = qw(ch i l d text i3 l3 d3 i6 l6 d6);

sub values_of (@given) {
    my %values;
    @values{@FIELDS} = @given;
    return %values;
}

# Fields as they are said, in their order.
sub fields (%v) {
    return map { my @all = ref $v{$_} ? $v{$_}->@* : $v{$_}; /d/ ? reals(@all) : /ch|text/ ? text(@all) : @all }
        grep { exists $v{$_} } @FIELDS;
}

# Of each C function what it gives, as it is said.
my %CALLS = (
    CorvaleInit     => sub ($corvale) { $corvale->init; () },
    CorvaleGetInfo  => sub ($corvale) { text($corvale->info) },
    GetInitDllNames => sub ($corvale) { text($corvale->init_dll_names) },
    OpenLogFile     => sub ($corvale, $name) { $corvale->open_log_file($name); () },
    CloseLogFile    => sub ($corvale) { $corvale->close_log_file; () },
    LogMessage      => sub ($corvale, $message) { $corvale->log_message($message); () },
    GetLastErrMsg   => sub ($corvale) { text($corvale->last_err_msg) },
    GetLastInfoMsg  => sub ($corvale) { text($corvale->last_info_msg) },
    GetDupKeyMode   => sub ($corvale) { $corvale->dup_key_mode },
    SetDupKeyMode   => sub ($corvale, $mode) { $corvale->set_dup_key_mode($mode); () },
    GetAllKeyMode   => sub ($corvale) { $corvale->all_key_mode },
    SetAllKeyMode   => sub ($corvale, $mode) { $corvale->set_all_key_mode($mode); () },
    ResetAllKeyMode => sub ($corvale) { $corvale->reset_all_key_mode; () },
    GetElsetKeyMode => sub ($corvale) { $corvale->elset_key_mode },
    SetElsetKeyMode => sub ($corvale, $mode) { $corvale->set_elset_key_mode($mode); () },
    CorvaleLoadFile => sub ($corvale, $name) { $corvale->load_file($name); () },
    GetMOICData     => sub ($corvale, $count) { reals($corvale->moic_data($count)) },
    TestInterface   => sub ($corvale, @given) { fields($corvale->test_interface(values_of(@given))) },
    TestInterface2  => sub ($corvale, @given) { fields($corvale->test_interface2(values_of(@given))) },
    TestInterface3  => sub ($corvale, $i3, $i6) { fields($corvale->test_interface3(i3 => $i3, i6 => $i6)) },
);

my $corvale;
while (<STDIN>) {
    my ($name, @given) = split;
    @given = map { decoded($_) } @given;
    my $is_open = $name eq 'Open';
    if (my @said = eval { ('ok', $is_open ? ($corvale = Corvale->new(@given)) && () : $CALLS{$name}->($corvale, @given)) }) {
        say "@said";
    } elsif (ref $@) {
        say join ' ', 'failed', text($@->message);
    } else {
        say $is_open ? join ' ', 'unloaded', text($@) : 'refused';
    }
}
