! Walks the table of the C API and calls every function of it through this binding.
!
!     test_corvale FOLDER ARGUMENTS
!
! FOLDER is where a log may be written, ARGUMENTS how many agreed with the table.
program test_corvale
  use, intrinsic :: iso_fortran_env, only: int32, int64, real64
  use corvale
  implicit none
  character(len=*), parameter :: FAILED_LOAD = &
    "FileOpen: Unable to open file ""no such file"" for reading."
  character(len=512) :: folder, row(2)
  character(len=1024) :: line, reason
  integer :: status, called, table

  called = 0
  call check_loading()
  open (newunit=table, file=setting("CORVALE_INTERFACE"), status="old", action="read")
  do
    read (table, "(a)", iostat=status) line
    if (status /= 0) exit
    if (line(:9) /= "function ") cycle
    read (line, *) row
    call call_function(trim(row(2)))
    called = called + 1
  end do
  call refusals()
  call get_command_argument(2, line)
  print "(a, i0, 3a)", "Fortran: ", called, " of 20 functions called, ", trim(line), &
    " arguments checked, ok"

contains

  subroutine call_function(name)
    character(len=*), intent(in) :: name
    select case (name)
    case ("CorvaleInit")
      call corvale_init(status)
      call expect(status == CORVALE_OK, name)
    case ("CorvaleGetInfo")
      call expect(index(corvale_info(), "Arvenit Corvale - Version: v9.4 - Build: ") == 1, name)
    case ("GetInitDllNames")
      call expect(len(corvale_init_dll_names()) == 0, name)
    case ("GetDupKeyMode", "SetDupKeyMode", "GetAllKeyMode", "SetAllKeyMode", "ResetAllKeyMode", &
          "GetElsetKeyMode", "SetElsetKeyMode")
      call modes()
    case ("OpenLogFile", "CloseLogFile", "LogMessage", "GetLastErrMsg", "GetLastInfoMsg")
      call log_file()
    case ("CorvaleLoadFile", "GetMOICData")
      call cards()
    case ("TestInterface", "TestInterface2", "TestInterface3")
      call self_tests()
    case default
      call expect(.false., "no call of " // name)
    end select
  end subroutine

  subroutine check_loading()
    call corvale_open("no-such.so", status)
    call expect(status == CORVALE_NOT_LOADED, "a library that is not there")
    call corvale_open("libc.so.6", status, reason)
    call expect(status == CORVALE_NOT_LOADED, "a library without our functions")
    call expect(index(reason, "Corvale") > 0 .or. index(reason, "Test") > 0, "names what is missing")
  end subroutine

  subroutine modes()
    call corvale_set_dup_key_mode(1)
    call corvale_set_all_key_mode(1)
    call corvale_set_elset_key_mode(1)
    call corvale_set_dup_key_mode(2, status, reason)
    call expect(corvale_last_err_msg() == reason, "the message stays stored")
    call expect_failure("SetDupKeyMode: invalid input value for DUPLICATION key mode.")
    call corvale_set_all_key_mode(-1, status, reason)
    call expect_failure("SetAllKeyMode: invalid input value for elset key mode.")
    call corvale_set_elset_key_mode(2, status, reason)
    call expect_failure("SetElsetKeyMode: invalid input value for elset key mode.")
    call expect_modes([1, 1, 1], "modes that were set")
    call corvale_reset_all_key_mode()
    call expect_modes([0, 0, 1], "modes after the reset")
    call corvale_set_elset_key_mode(0)
    call expect_modes([0, 0, 0], "all modes 0")
  end subroutine

  subroutine log_file()
    character(len=:), allocatable :: name
    character(len=200) :: lines(3)
    integer :: log, length

    call get_command_argument(1, folder)
    call corvale_open_log_file(folder, status, reason)
    call expect_failure("OpenLogFile: log file failed to open.")
    name = trim(folder) // "/test.log"
    call corvale_open_log_file(name)
    call corvale_log_message("pass 1 of 3")
    call corvale_load_file("no such file", status, reason)
    call expect_failure(FAILED_LOAD)
    call corvale_close_log_file()
    call expect(corvale_last_info_msg() == "pass 1 of 3", "the last informational message")
    call expect(corvale_last_err_msg() == "", "no error after closing")

    open (newunit=log, file=name, status="old", action="read")
    read (log, "(a)", advance="no", size=length, iostat=status) lines(1)
    read (log, "(a)", iostat=status) lines(2:)
    close (log, status="delete")
    call expect(length == 128 .and. lines(1) == "pass 1 of 3", "the line that was logged")
    call expect(status /= 0 .and. lines(2) == "Error-" // FAILED_LOAD, "the line of the error")
  end subroutine

  subroutine cards()
    real(real64) :: values(128)

    call corvale_load_file(setting("CORVALE_INPUT"))
    call expect_modes([0, 1, 1], "modes of cards")
    values = corvale_moic_data(128)
    call expect(same(values(:3), [6378.135_real64, 398600.8_real64, 1.0826158e-3_real64]), "MOIC 1-3")
    call expect(same(values(7:9), [0.25_real64, 0.0_real64, 1e-12_real64]), "MOIC 7-9")
    call expect(same(corvale_moic_data(129), spread(0.0_real64, 1, 129)), "129 zeros")
    call expect(size(corvale_moic_data(0)) == 0, "none for a count of 0")
    call corvale_reset_all_key_mode()
  end subroutine

  subroutine self_tests()
    type(corvale_values) :: from, to
    integer(int32), parameter :: greatest = huge(1_int32), least = -greatest - 1
    integer(int64), parameter :: greatest_long = huge(1_int64), least_long = -greatest_long - 1

    from = corvale_values(char(254), greatest, greatest_long, 0.1_real64, "  text~", &
      [greatest, 2, -3], [greatest_long, 5_int64, -6_int64], &
      [-0.0_real64, transfer(1_int64, 0.0_real64), 1e308_real64], &
      [least, 8, 9, 10, 11, greatest], &
      [least_long, 14_int64, 15_int64, 16_int64, 17_int64, greatest_long], &
      [0.2_real64, 0.3_real64, 0.4_real64, 0.5_real64, 0.6_real64, 0.7_real64])
    call corvale_test_interface(from, to)
    call expect(same_values(from, to), "what goes in comes out")

    call corvale_test_interface2(to)
    call expect(same_values(to, corvale_values("Z", least, least_long + 1, from%d + 42.123456_real64, &
      "It doesn't matter what your string was.", [least, 3, -2], &
      [least_long + 1234567890123456788_int64, 1234567890123456794_int64, 1234567890123456783_int64], &
      from%d3 + 42.0_real64, [least + 1, 9, 10, 11, 12, least], &
      [least_long + 6, 20_int64, 21_int64, 22_int64, 23_int64, least_long + 5], &
      from%d6 + 7.6_real64)), "what changes in place")

    call corvale_test_interface3(from, to)
    call expect(all(to%i3 == [-4, 8, -12]), "4 times, wrapped")
    call expect(all(to%i6 == [least, 40, 45, 50, 55, greatest - 4]), "5 times, wrapped")
  end subroutine

  subroutine refusals()
    character(len=513), parameter :: names(5) = [character(len=513) :: &
      " blank", "tab" // achar(9), "del" // achar(127), "nul" // achar(0), repeat("n", 513)]
    type(corvale_values) :: from, to
    integer :: i

    do i = 1, size(names)
      call corvale_load_file(names(i), status)
      call expect(status == CORVALE_REFUSED, "a name that is refused: " // trim(names(i)))
      call corvale_open_log_file(names(i), status)
      call expect(status == CORVALE_REFUSED, "a log that is refused: " // trim(names(i)))
      call corvale_log_message(names(i), status)
      call expect(status == CORVALE_REFUSED, "a message that is refused: " // trim(names(i)))
    end do
    call corvale_log_message(repeat("m", 129), status)
    call expect(status == CORVALE_REFUSED, "129 characters")
    call corvale_log_message(repeat("m", 128) // " ")
    call expect(corvale_last_info_msg() == repeat("m", 128), "128 characters and padding")
    call corvale_load_file("", status, reason)
    call expect_failure("FileOpen: File name is empty.")
    from%str(512:) = char(200)
    call corvale_test_interface(from, to, status)
    call expect(status == CORVALE_REFUSED, "a text that is refused")
    call corvale_test_interface2(from, status)
    call expect(status == CORVALE_REFUSED, "a text in place that is refused")
  end subroutine

  subroutine expect(holds, what)
    logical, intent(in) :: holds
    character(len=*), intent(in) :: what
    if (.not. holds) error stop "failed: " // what
  end subroutine

  subroutine expect_failure(message)
    character(len=*), intent(in) :: message
    call expect(status == CORVALE_FAILED .and. reason == message, message)
    reason = ""
  end subroutine

  subroutine expect_modes(wanted, what)
    integer, intent(in) :: wanted(3)
    character(len=*), intent(in) :: what
    call expect(all(wanted == [corvale_dup_key_mode(), corvale_all_key_mode(), &
      corvale_elset_key_mode()]), what)
  end subroutine

  logical function same(a, b)
    real(real64), intent(in) :: a(:), b(:)
    same = all(transfer(a, [0_int64]) == transfer(b, [0_int64]))
  end function

  logical function same_values(a, b)
    type(corvale_values), intent(in) :: a, b
    same_values = a%ch == b%ch .and. a%i == b%i .and. a%l == b%l .and. a%str == b%str .and. &
      same([a%d], [b%d]) .and. all(a%i3 == b%i3) .and. all(a%l3 == b%l3) .and. &
      same(a%d3, b%d3) .and. all(a%i6 == b%i6) .and. all(a%l6 == b%l6) .and. same(a%d6, b%d6)
  end function

  function setting(name) result(value)
    character(len=*), intent(in) :: name
    character(len=:), allocatable :: value
    character(len=4096) :: buffer
    call get_environment_variable(name, buffer)
    value = trim(buffer)
  end function
end program
