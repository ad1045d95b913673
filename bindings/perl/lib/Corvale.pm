package Corvale;

use v5.36;

use Carp qw(croak);
use FFI::Platypus 2.00;
use FFI::Platypus::DL qw(dlopen dlsym dlerror RTLD_NOW RTLD_LOCAL);
use Scalar::Util qw(looks_like_number);

our $VERSION = '9.5.0';

# Result, then each argument: name, type, how many elements the library reads or writes (a number or the
# name of an argument), way. A single element that goes in is passed by value, all else by address.
our %DECLARATIONS = (
    CorvaleInit     => ['int32'],
    CorvaleGetInfo  => ['void', [qw(info text 128 out)]],
    GetInitDllNames => ['void', [qw(names text 512 out)]],
    OpenLogFile     => ['int32', [qw(fileName text 512 in)]],
    CloseLogFile    => ['void'],
    LogMessage      => ['void', [qw(message text 128 in)]],
    GetLastErrMsg   => ['void', [qw(message text 128 out)]],
    GetLastInfoMsg  => ['void', [qw(message text 128 out)]],
    GetDupKeyMode   => ['int32'],
    SetDupKeyMode   => ['int32', [qw(mode int32 1 in)]],
    GetAllKeyMode   => ['int32'],
    SetAllKeyMode   => ['int32', [qw(mode int32 1 in)]],
    ResetAllKeyMode => ['void'],
    GetElsetKeyMode => ['int32'],
    SetElsetKeyMode => ['int32', [qw(mode int32 1 in)]],
    CorvaleLoadFile => ['int32', [qw(fileName text 512 in)]],
    GetMOICData     => ['void', [qw(count int32 1 in)], [qw(values real64 count out)]],
    TestInterface   => ['void',
        [qw(cIn char 1 in)],     [qw(cOut char 1 out)],
        [qw(iIn int32 1 in)],    [qw(iOut int32 1 out)],
        [qw(lIn int64 1 in)],    [qw(lOut int64 1 out)],
        [qw(dIn real64 1 in)],   [qw(dOut real64 1 out)],
        [qw(strIn text 512 in)], [qw(strOut text 512 out)],
        [qw(i3In int32 3 in)],   [qw(i3Out int32 3 out)],
        [qw(l3In int64 3 in)],   [qw(l3Out int64 3 out)],
        [qw(d3In real64 3 in)],  [qw(d3Out real64 3 out)],
        [qw(i6In int32 6 in)],   [qw(i6Out int32 6 out)],
        [qw(l6In int64 6 in)],   [qw(l6Out int64 6 out)],
        [qw(d6In real64 6 in)],  [qw(d6Out real64 6 out)]],
    TestInterface2 => ['void',
        [qw(ch char 1 inout)],  [qw(i int32 1 inout)], [qw(l int64 1 inout)], [qw(d real64 1 inout)],
        [qw(str text 512 inout)],
        [qw(i3 int32 3 inout)], [qw(l3 int64 3 inout)], [qw(d3 real64 3 inout)],
        [qw(i6 int32 6 inout)], [qw(l6 int64 6 inout)], [qw(d6 real64 6 inout)]],
    TestInterface3 => ['void',
        [qw(i3In int32 3 in)], [qw(i3Out int32 3 out)],
        [qw(i6In int32 6 in)], [qw(i6Out int32 6 out)]],
);

my %C_TYPE = (
    void => 'void', char => 'uint8', text => 'uint8', int32 => 'sint32', int64 => 'sint64', real64 => 'double',
);

# Whether a value is one of a type; a character is its code here.
my %FITS = (
    char   => sub ($value) { _is_integer($value) && $value >= 0 && $value <= 255 },
    text   => sub ($value) { _is_integer($value) && $value >= 0 && $value <= 255 },
    int32  => sub ($value) { _is_integer($value) && $value >= -2**31 && $value < 2**31 },
    int64  => \&_is_integer,
    real64 => sub ($value) { looks_like_number($value) },
);

# %d stops at the least and the greatest integer of 64 bits, so that one beyond differs from it.
sub _is_integer ($value) {
    return looks_like_number($value) && $value == int $value && sprintf('%d', $value) == $value;
}

sub new ($class, $path = $ENV{CORVALE_LIBRARY} // 'libCorvale.so.9') {
    my $library = dlopen($path, RTLD_NOW | RTLD_LOCAL) // croak dlerror();
    my $ffi     = FFI::Platypus->new(api => 2);
    my %self    = map { $_ => _function($ffi, $library, $_) } keys %DECLARATIONS;
    return bless \%self, $class;
}

# A function of the library that checks its arguments first: no call can reach past an array.
sub _function ($ffi, $library, $name) {
    my ($result, @declared) = $DECLARATIONS{$name}->@*;
    my $address  = dlsym($library, $name) // croak dlerror();
    my $function = $ffi->function($address, [map { _type($_->@*) } @declared], $C_TYPE{$result});
    return sub (@values) {
        my %given;
        for my $k (0 .. $#declared) {
            my ($argument, $type, $width, $way) = $declared[$k]->@*;
            $given{$argument} = $values[$k];
            _check($argument, $type, _is_by_value($declared[$k]->@*) ? undef : $given{$width} // $width, $values[$k]);
        }
        return $function->call(@values);
    };
}

sub _is_by_value ($name, $type, $width, $way) {
    return $way eq 'in' && $width eq '1' && $type ne 'text';
}

sub _type ($name, $type, $width, $way) {
    return $C_TYPE{$type} if _is_by_value($name, $type, $width, $way);
    return "$C_TYPE{$type}\[" . ($width =~ /\d/ ? $width : '') . ']';
}

sub _check ($name, $type, $elements, $value) {
    if (defined $elements) {
        croak "$name: not an array of $elements" unless ref $value eq 'ARRAY' && $value->@* == $elements;
    }
    for my $element (defined $elements ? $value->@* : $value) {
        croak "$name: '" . ($element // 'undef') . "' is no $type" unless $FITS{$type}->($element);
    }
}

# The codes of a text in a buffer; croaks when the library would not see all of it.
sub _filled ($text, $width) {
    croak "'$text': not a printable ASCII character" if $text =~ /[^ -~]/;
    croak "'$text': " . length($text) . " characters, $width fit" if length $text > $width;
    return [unpack 'C*', pack "A$width", $text];
}

# A name or message; also refused when it begins with a blank, which the library drops.
sub _filled_unindented ($text, $width) {
    croak "'$text': begins with a blank" if $text =~ /\A /;
    return _filled($text, $width);
}

# What a buffer holds, without the blanks that fill it; bytes are Latin-1.
sub _trimmed ($buffer) {
    return pack('C*', $buffer->@*) =~ s/ +\z//r;
}

sub _read ($self, $function, $width) {
    my $buffer = [(0) x $width];
    $self->{$function}->($buffer);
    return _trimmed($buffer);
}

sub _succeed ($self, $status) {
    Corvale::Error->throw($self->last_err_msg) if $status != 0;
    return;
}

sub init ($self) { $self->_succeed($self->{CorvaleInit}->()) }

sub info ($self) { $self->_read('CorvaleGetInfo', 128) }

sub init_dll_names ($self) { $self->_read('GetInitDllNames', 512) }

sub open_log_file ($self, $name) {
    $self->_succeed($self->{OpenLogFile}->(_filled_unindented($name, 512)));
}

sub close_log_file ($self) { $self->{CloseLogFile}->() }

sub log_message ($self, $message) { $self->{LogMessage}->(_filled_unindented($message, 128)) }

sub last_err_msg ($self) { $self->_read('GetLastErrMsg', 128) }

sub last_info_msg ($self) { $self->_read('GetLastInfoMsg', 128) }

sub dup_key_mode ($self) { $self->{GetDupKeyMode}->() }

sub set_dup_key_mode ($self, $mode) { $self->_succeed($self->{SetDupKeyMode}->($mode)) }

sub all_key_mode ($self) { $self->{GetAllKeyMode}->() }

sub set_all_key_mode ($self, $mode) { $self->_succeed($self->{SetAllKeyMode}->($mode)) }

sub reset_all_key_mode ($self) { $self->{ResetAllKeyMode}->() }

sub elset_key_mode ($self) { $self->{GetElsetKeyMode}->() }

sub set_elset_key_mode ($self, $mode) { $self->_succeed($self->{SetElsetKeyMode}->($mode)) }

sub load_file ($self, $name) {
    $self->_succeed($self->{CorvaleLoadFile}->(_filled_unindented($name, 512)));
}

sub moic_data ($self, $count) {
    croak "count: '$count' is no number of values" unless $FITS{int32}->($count) && $count >= 0;
    return if $count == 0;
    my $values = [(0.0) x $count];
    $self->{GetMOICData}->($count, $values);
    return $values->@*;
}

sub test_interface ($self, %from) {
    my %to = (ch => [0], i => [0], l => [0], d => [0], text => [(0) x 512], i3 => [(0) x 3], l3 => [(0) x 3],
              d3 => [(0) x 3], i6 => [(0) x 6], l6 => [(0) x 6], d6 => [(0) x 6]);
    $self->{TestInterface}->(
        ord $from{ch}, $to{ch}, $from{i}, $to{i}, $from{l}, $to{l}, $from{d}, $to{d},
        _filled($from{text}, 512), $to{text}, $from{i3}, $to{i3}, $from{l3}, $to{l3}, $from{d3}, $to{d3},
        $from{i6}, $to{i6}, $from{l6}, $to{l6}, $from{d6}, $to{d6});
    return _unpacked(%to);
}

sub test_interface2 ($self, %from) {
    my %to = map { $_ => [$from{$_}->@*] } qw(i3 l3 d3 i6 l6 d6);
    $to{$_}   = [$from{$_}] for qw(i l d);
    $to{ch}   = [ord $from{ch}];
    $to{text} = _filled($from{text}, 512);
    $self->{TestInterface2}->(@to{qw(ch i l d text i3 l3 d3 i6 l6 d6)});
    return _unpacked(%to);
}

sub test_interface3 ($self, %from) {
    my %to = (i3 => [(0) x 3], i6 => [(0) x 6]);
    $self->{TestInterface3}->($from{i3}, $to{i3}, $from{i6}, $to{i6});
    return %to;
}

# Single values out of their arrays, the text out of its buffer.
sub _unpacked (%to) {
    return (%to, ch => chr $to{ch}[0], text => _trimmed($to{text}), map { $_ => $to{$_}[0] } qw(i l d));
}

package Corvale::Error {
    use overload '""' => sub ($self, @) { $self->{message} }, fallback => 1;

    sub throw ($class, $message) { die bless {message => $message}, $class }

    sub message ($self) { $self->{message} }
}

1;

__END__

=encoding utf8

=head1 NAME

Corvale - the C API of libCorvale: messages and log, key modes, input-file cards, self-tests

=head1 SYNOPSIS

    use Corvale;

    my $corvale = Corvale->new;
    $corvale->load_file('orbit.inp');
    my @values = $corvale->moic_data(128);

=head1 DESCRIPTION

A call that the library answers with status 2 dies with a C<Corvale::Error>, whose C<message> (and text)
is that of the library. What the library would take otherwise than given croaks before the call: a text
with a character outside 32 to 126 or too long, a name or message that begins with a blank, an integer
that does not fit, an array of another length. Texts come back without the blanks that fill their
buffers; bytes are Latin-1. The library has one state for the whole process.

=head1 METHODS

=over

=item new, new($path)

Loads a library by its path, or by its name from where the system looks, with local scope, to the end of
the process. Without one it is what C<CORVALE_LIBRARY> names, or else F<libCorvale.so.9>. Croaks with the
loader's reason.

=item init

CorvaleInit. Does nothing: the library is ready once it is loaded.

=item info

CorvaleGetInfo. Name, version, build date, platform and compiler.

=item init_dll_names

GetInitDllNames. The libraries that have to be initialised first: none.

=item open_log_file($name)

OpenLogFile. Opens the log, created or emptied; every message is from then on also a line of it.

=item close_log_file

CloseLogFile. Closes the log, if one is open, and blanks the last error message.

=item log_message($message)

LogMessage. Stores a message of at most 128 characters and writes it to an open log.

=item last_err_msg

GetLastErrMsg. The last error message; it stays until the next error or C<close_log_file>.

=item last_info_msg

GetLastInfoMsg. The last informational message.

=item dup_key_mode, set_dup_key_mode($mode)

GetDupKeyMode, SetDupKeyMode. 0 or 1; setting another dies and changes nothing.

=item all_key_mode, set_all_key_mode($mode)

GetAllKeyMode, SetAllKeyMode. 0 or 1; setting another dies and changes nothing.

=item reset_all_key_mode

ResetAllKeyMode. Sets the all-key and the duplication key mode back to 0.

=item elset_key_mode, set_elset_key_mode($mode)

GetElsetKeyMode, SetElsetKeyMode. 0 or 1; setting another dies and changes nothing.

=item load_file($name)

CorvaleLoadFile. Reads the cards of a file. Dies if it cannot be opened, never for what it holds.

=item moic_data($count)

GetMOICData. A list of the first values of the array that QZ_MOIC cards fill; for more than 128 the
library gives zeros.

=item test_interface(%values)

TestInterface. Gives every value back as it arrived: C<ch> a character, C<i> and C<l> integers of 32 and
64 bits, C<d> a real, C<text> at most 512 characters, C<i3>, C<l3>, C<d3>, C<i6>, C<l6>, C<d6> references to
arrays of three and six.

=item test_interface2(%values)

TestInterface2. The same values, each changed by a fixed amount; integers wrap.

=item test_interface3(i3 => [...], i6 => [...])

TestInterface3. The products with 4 and with 5, which wrap.

=back

=cut
