! Answers the cases of tests/bindings/check.py with this binding.
program run_cases
  use, intrinsic :: iso_fortran_env, only: int32, int64, real64
  use corvale
  implicit none
  character(len=4096) :: line, said
  character(len=512) :: reason
  integer :: status, next  ! next: where the rest of the line begins

  do
    read (*, "(a)", iostat=status) line
    if (status /= 0) exit
    next = 1
    said = ""
    reason = ""
    status = CORVALE_OK
    call answer(word())
    select case (status)
    case (CORVALE_OK)
      print "(a)", "ok" // trim(said)
    case (CORVALE_REFUSED)
      print "(a)", "refused"
    case (CORVALE_FAILED)
      print "(a)", "failed " // hex(trim(reason))
    case default
      print "(a)", "unloaded " // hex(trim(reason))
    end select
  end do

contains

  !> The call of a C function; what it gives goes to `said`.
  subroutine answer(name)
    character(len=*), intent(in) :: name
    type(corvale_values) :: from, to

    select case (name)
    case ("Open")
      if (next > len_trim(line)) then
        call corvale_open(stat=status, errmsg=reason)
      else
        call corvale_open(text(), status, reason)
      end if
    case ("CorvaleInit")
      call corvale_init(status, reason)
    case ("CorvaleGetInfo")
      call say(hex(corvale_info()))
    case ("GetInitDllNames")
      call say(hex(corvale_init_dll_names()))
    case ("OpenLogFile")
      call corvale_open_log_file(text(), status, reason)
    case ("CloseLogFile")
      call corvale_close_log_file()
    case ("LogMessage")
      call corvale_log_message(text(), status, reason)
    case ("GetLastErrMsg")
      call say(hex(corvale_last_err_msg()))
    case ("GetLastInfoMsg")
      call say(hex(corvale_last_info_msg()))
    case ("GetDupKeyMode")
      call say_integers([int(corvale_dup_key_mode(), int64)])
    case ("SetDupKeyMode")
      call corvale_set_dup_key_mode(integer_32(), status, reason)
    case ("GetAllKeyMode")
      call say_integers([int(corvale_all_key_mode(), int64)])
    case ("SetAllKeyMode")
      call corvale_set_all_key_mode(integer_32(), status, reason)
    case ("ResetAllKeyMode")
      call corvale_reset_all_key_mode()
    case ("GetElsetKeyMode")
      call say_integers([int(corvale_elset_key_mode(), int64)])
    case ("SetElsetKeyMode")
      call corvale_set_elset_key_mode(integer_32(), status, reason)
    case ("CorvaleLoadFile")
      call corvale_load_file(text(), status, reason)
    case ("GetMOICData")
      call say_reals(corvale_moic_data(integer_32()))
    case ("TestInterface")
      from = values()
      call corvale_test_interface(from, to, status, reason)
      call say_values(to)
    case ("TestInterface2")
      to = values()
      call corvale_test_interface2(to, status, reason)
      call say_values(to)
    case ("TestInterface3")
      from%i3 = int32s(3)
      from%i6 = int32s(6)
      call corvale_test_interface3(from, to)
      call say_integers(int([to%i3, to%i6], int64))
    case default
      error stop "no call of " // name
    end select
  end subroutine

  !> The next word of the line, without the letter in front of a value.
  function word()
    character(len=:), allocatable :: word
    integer :: length

    length = scan(line(next:), " ,") - 1
    word = line(next:next + length - 1)
    next = next + length + 1
  end function

  function text()
    character(len=:), allocatable :: text, token
    integer :: k, code

    token = word()
    allocate (character(len=len(token) / 2) :: text)
    do k = 1, len(text)
      read (token(2 * k:2 * k + 1), "(z2)") code
      text(k:k) = achar(code)
    end do
  end function

  function integers(count) result(read_values)
    integer, intent(in) :: count
    integer(int64) :: read_values(count)
    character(len=:), allocatable :: token
    integer :: k

    do k = 1, count
      token = word()
      read (token(2:), *) read_values(k)
    end do
  end function

  integer(int32) function integer_32()
    integer_32 = sum(int32s(1))
  end function

  function int32s(count)
    integer, intent(in) :: count
    integer(int32) :: int32s(count)
    int32s = int(integers(count), int32)
  end function

  function reals(count) result(read_values)
    integer, intent(in) :: count
    real(real64) :: read_values(count)
    character(len=:), allocatable :: token
    integer(int64) :: bits
    integer :: k

    do k = 1, count
      token = word()
      read (token(2:), "(z16)") bits
      read_values(k) = transfer(bits, read_values(k))
    end do
  end function

  function values() result(v)
    type(corvale_values) :: v
    v%ch = char(integer_32())
    v%i = integer_32()
    v%l = sum(integers(1))
    v%d = sum(reals(1))
    v%str = text()
    v%i3 = int32s(3)
    v%l3 = integers(3)
    v%d3 = reals(3)
    v%i6 = int32s(6)
    v%l6 = integers(6)
    v%d6 = reals(6)
  end function

  subroutine say(what)
    character(len=*), intent(in) :: what
    said = trim(said) // " " // what
  end subroutine

  function hex(bytes)
    character(len=*), intent(in) :: bytes
    character(len=:), allocatable :: hex
    character(len=1100) :: digits
    integer :: k

    write (digits, "('x', *(z2.2))") (ichar(bytes(k:k)), k = 1, len(bytes))
    hex = trim(digits)
  end function

  subroutine say_integers(numbers)
    integer(int64), intent(in) :: numbers(:)
    character(len=400) :: digits
    write (digits, "(*(i0, 1x))") numbers
    call say(trim(digits))
  end subroutine

  subroutine say_reals(numbers)
    real(real64), intent(in) :: numbers(:)
    character(len=4000) :: bits
    write (bits, "(*(:, 'r', z16.16, 1x))") numbers
    call say(trim(bits))
  end subroutine

  subroutine say_values(v)
    type(corvale_values), intent(in) :: v
    call say(hex(v%ch))
    call say_integers([int(v%i, int64), v%l])
    call say_reals([v%d])
    call say(hex(trim(v%str)))
    call say_integers([int(v%i3, int64), v%l3])
    call say_reals(v%d3)
    call say_integers([int(v%i6, int64), v%l6])
    call say_reals(v%d6)
  end subroutine
end program
