! corvale: the C API of libCorvale: messages and log, key modes, input-file cards, self-tests.
!
!     use corvale
!     double precision :: values(9)
!     call corvale_load_file("orbit.inp")
!     values = corvale_moic_data(9)
!
! Errors   What can fail has the optional arguments `stat` and `errmsg`, as `allocate` has: stat is
!          CORVALE_OK, or one of the codes below with the reason in errmsg. Without `stat` the
!          program stops with that reason.
! Texts    Trailing blanks are padding. Refused, because the library would take something else:
!          characters outside codes 32 to 126, too many of them (512, messages 128), a blank in
!          front of a file name or message. Texts come back without trailing blanks.
! Loading  The first call loads what the environment variable CORVALE_LIBRARY names, or else
!          libCorvale.so.9 from where the system looks; corvale_open may name another before.
! Threads  Any number of OpenMP threads, when this is compiled with -fopenmp: calls with a status
!          then take turns, so that errmsg is of the same call.
module corvale
  use, intrinsic :: iso_c_binding, only: c_char, c_double, c_int32_t, c_int64_t
  use corvale_api, only: api_type, load_api, OpenLogFile, SetDupKeyMode
  implicit none
  private
  public :: CORVALE_OK, CORVALE_REFUSED, CORVALE_FAILED, CORVALE_NOT_LOADED, corvale_values
  public :: corvale_open, corvale_init, corvale_info, corvale_init_dll_names
  public :: corvale_open_log_file, corvale_close_log_file, corvale_log_message
  public :: corvale_last_err_msg, corvale_last_info_msg
  public :: corvale_dup_key_mode, corvale_all_key_mode, corvale_elset_key_mode
  public :: corvale_set_dup_key_mode, corvale_set_all_key_mode, corvale_set_elset_key_mode
  public :: corvale_reset_all_key_mode, corvale_load_file, corvale_moic_data
  public :: corvale_test_interface, corvale_test_interface2, corvale_test_interface3

  !> What `stat` may be: done; refused before the call; the library's status 2; no library.
  integer, parameter :: CORVALE_OK = 0, CORVALE_REFUSED = 1, CORVALE_FAILED = 2
  integer, parameter :: CORVALE_NOT_LOADED = 3

  integer, parameter :: NAME_WIDTH = 512, MESSAGE_WIDTH = 128

  !> One of every kind of argument, for the self-tests.
  type :: corvale_values
    character(kind=c_char) :: ch = " "
    integer(c_int32_t) :: i = 0
    integer(c_int64_t) :: l = 0
    real(c_double) :: d = 0
    character(len=NAME_WIDTH) :: str = ""
    integer(c_int32_t) :: i3(3) = 0
    integer(c_int64_t) :: l3(3) = 0
    real(c_double) :: d3(3) = 0
    integer(c_int32_t) :: i6(6) = 0
    integer(c_int64_t) :: l6(6) = 0
    real(c_double) :: d6(6) = 0
  end type

  type(api_type) :: api
  logical :: is_loaded = .false.

contains

  !> Loads the library, unless it is loaded: `library`, or what is said above under Loading.
  subroutine corvale_open(library, stat, errmsg)
    character(len=*), intent(in), optional :: library
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg
    character(len=:), allocatable :: reason

    reason = ""
    !$omp critical (corvale_loading)
    if (.not. is_loaded) then
      if (present(library)) then
        call load_api(trim(library), api, reason)
      else
        call load_api(usual_library(), api, reason)
      end if
      is_loaded = reason == ""
    end if
    !$omp end critical (corvale_loading)
    call report(merge(CORVALE_OK, CORVALE_NOT_LOADED, reason == ""), reason, stat, errmsg)
  end subroutine

  !> CorvaleInit: does nothing, the library is ready once it is loaded.
  subroutine corvale_init(stat, errmsg)
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg

    if (.not. is_ready(stat, errmsg)) return
    call report(int(api%CorvaleInit()), "CorvaleInit", stat, errmsg)
  end subroutine

  !> CorvaleGetInfo: name, version, build date, platform and compiler of the library.
  function corvale_info() result(info)
    character(len=:), allocatable :: info
    character(len=MESSAGE_WIDTH) :: buffer

    call corvale_open()
    call api%CorvaleGetInfo(buffer)
    info = trim(buffer)
  end function

  !> GetInitDllNames: the libraries that have to be initialised first, none.
  function corvale_init_dll_names() result(names)
    character(len=:), allocatable :: names
    character(len=NAME_WIDTH) :: buffer

    call corvale_open()
    call api%GetInitDllNames(buffer)
    names = trim(buffer)
  end function

  !> OpenLogFile: opens the log, created or emptied; from then on every message is a line of it too.
  subroutine corvale_open_log_file(name, stat, errmsg)
    character(len=*), intent(in) :: name
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg

    if (.not. is_ready(stat, errmsg)) return
    call pass_name(api%OpenLogFile, name, stat, errmsg)
  end subroutine

  !> CloseLogFile: closes the log, if one is open, and blanks the last error message.
  subroutine corvale_close_log_file()
    call corvale_open()
    call api%CloseLogFile()
  end subroutine

  !> LogMessage: stores an informational message of up to 128 characters, also in an open log.
  subroutine corvale_log_message(message, stat, errmsg)
    character(len=*), intent(in) :: message
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg
    character(len=MESSAGE_WIDTH) :: buffer

    if (.not. is_ready(stat, errmsg)) return
    if (is_refused(message, MESSAGE_WIDTH, .false., stat, errmsg)) return
    buffer = message
    call api%LogMessage(buffer)
  end subroutine

  !> GetLastErrMsg: the last error message; it stays until the next or corvale_close_log_file.
  function corvale_last_err_msg() result(message)
    character(len=:), allocatable :: message
    character(len=MESSAGE_WIDTH) :: buffer

    call corvale_open()
    call api%GetLastErrMsg(buffer)
    message = trim(buffer)
  end function

  !> GetLastInfoMsg: the last informational message.
  function corvale_last_info_msg() result(message)
    character(len=:), allocatable :: message
    character(len=MESSAGE_WIDTH) :: buffer

    call corvale_open()
    call api%GetLastInfoMsg(buffer)
    message = trim(buffer)
  end function

  !> GetDupKeyMode: the duplication key mode, 0 or 1.
  integer function corvale_dup_key_mode()
    call corvale_open()
    corvale_dup_key_mode = api%GetDupKeyMode()
  end function

  !> SetDupKeyMode: sets the duplication key mode; fails for a mode other than 0 and 1.
  subroutine corvale_set_dup_key_mode(mode, stat, errmsg)
    integer(c_int32_t), intent(in) :: mode
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg

    if (.not. is_ready(stat, errmsg)) return
    call pass_mode(api%SetDupKeyMode, mode, stat, errmsg)
  end subroutine

  !> GetAllKeyMode: the all-key mode, 0 or 1.
  integer function corvale_all_key_mode()
    call corvale_open()
    corvale_all_key_mode = api%GetAllKeyMode()
  end function

  !> SetAllKeyMode: sets the all-key mode; fails for a mode other than 0 and 1.
  subroutine corvale_set_all_key_mode(mode, stat, errmsg)
    integer(c_int32_t), intent(in) :: mode
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg

    if (.not. is_ready(stat, errmsg)) return
    call pass_mode(api%SetAllKeyMode, mode, stat, errmsg)
  end subroutine

  !> ResetAllKeyMode: sets the all-key and the duplication key mode back to 0.
  subroutine corvale_reset_all_key_mode()
    call corvale_open()
    call api%ResetAllKeyMode()
  end subroutine

  !> GetElsetKeyMode: the element-set key mode, 0 or 1.
  integer function corvale_elset_key_mode()
    call corvale_open()
    corvale_elset_key_mode = api%GetElsetKeyMode()
  end function

  !> SetElsetKeyMode: sets the element-set key mode; fails for a mode other than 0 and 1.
  subroutine corvale_set_elset_key_mode(mode, stat, errmsg)
    integer(c_int32_t), intent(in) :: mode
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg

    if (.not. is_ready(stat, errmsg)) return
    call pass_mode(api%SetElsetKeyMode, mode, stat, errmsg)
  end subroutine

  !> CorvaleLoadFile: reads the cards of an input file. Fails when it cannot be opened, never for
  !> what it holds.
  subroutine corvale_load_file(name, stat, errmsg)
    character(len=*), intent(in) :: name
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg

    if (.not. is_ready(stat, errmsg)) return
    call pass_name(api%CorvaleLoadFile, name, stat, errmsg)
  end subroutine

  !> GetMOICData: the first `count` values of the array that QZ_MOIC cards fill, none below 1; for
  !> more than 128 the library gives that many zeros.
  function corvale_moic_data(count) result(values)
    integer(c_int32_t), intent(in) :: count
    real(c_double) :: values(count)

    call corvale_open()
    call api%GetMOICData(count, values)
  end function

  !> TestInterface: gives every value of `from` back in `to` as it arrived in the library.
  subroutine corvale_test_interface(from, to, stat, errmsg)
    type(corvale_values), intent(in) :: from
    type(corvale_values), intent(out) :: to
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg

    if (.not. is_ready(stat, errmsg)) return
    if (is_refused(from%str, NAME_WIDTH, .true., stat, errmsg)) return
    call api%TestInterface(from%ch, to%ch, from%i, to%i, from%l, to%l, from%d, to%d, from%str, &
      to%str, from%i3, to%i3, from%l3, to%l3, from%d3, to%d3, from%i6, to%i6, from%l6, to%l6, &
      from%d6, to%d6)
  end subroutine

  !> TestInterface2: changes every value by a fixed amount; integers wrap.
  subroutine corvale_test_interface2(values, stat, errmsg)
    type(corvale_values), intent(inout) :: values
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg

    if (.not. is_ready(stat, errmsg)) return
    if (is_refused(values%str, NAME_WIDTH, .true., stat, errmsg)) return
    call api%TestInterface2(values%ch, values%i, values%l, values%d, values%str, values%i3, &
      values%l3, values%d3, values%i6, values%l6, values%d6)
  end subroutine

  !> TestInterface3: 4 times the `i3` and 5 times the `i6` of `from`, in `to`; products wrap.
  subroutine corvale_test_interface3(from, to)
    type(corvale_values), intent(in) :: from
    type(corvale_values), intent(inout) :: to

    call corvale_open()
    call api%TestInterface3(from%i3, to%i3, from%i6, to%i6)
  end subroutine

  subroutine pass_mode(set_mode, mode, stat, errmsg)
    procedure(SetDupKeyMode) :: set_mode
    integer(c_int32_t), intent(in) :: mode
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg
    character(len=MESSAGE_WIDTH) :: reason
    integer :: status

    reason = ""
    !$omp critical (corvale_status)
    status = set_mode(mode)
    if (status /= CORVALE_OK) call api%GetLastErrMsg(reason)
    !$omp end critical (corvale_status)
    call report(status, reason, stat, errmsg)
  end subroutine

  subroutine pass_name(use_name, name, stat, errmsg)
    procedure(OpenLogFile) :: use_name
    character(len=*), intent(in) :: name
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg
    character(len=NAME_WIDTH) :: buffer
    character(len=MESSAGE_WIDTH) :: reason
    integer :: status

    if (is_refused(name, NAME_WIDTH, .false., stat, errmsg)) return
    buffer = name
    reason = ""
    !$omp critical (corvale_status)
    status = use_name(buffer)
    if (status /= CORVALE_OK) call api%GetLastErrMsg(reason)
    !$omp end critical (corvale_status)
    call report(status, reason, stat, errmsg)
  end subroutine

  logical function is_ready(stat, errmsg)
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg

    call corvale_open(stat=stat, errmsg=errmsg)
    is_ready = is_loaded
  end function

  !> Whether the library would take something else than `text`; then that is reported.
  logical function is_refused(text, width, may_be_indented, stat, errmsg)
    character(len=*), intent(in) :: text
    integer, intent(in) :: width
    logical, intent(in) :: may_be_indented
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg
    character(len=:), allocatable :: why
    integer :: i, length

    length = len_trim(text)
    why = ""
    if (length > width) why = "has more characters than the library takes"
    if (length > 0 .and. .not. may_be_indented) then
      if (text(1:1) == " ") why = "begins with a blank, which the library would drop"
    end if
    do i = 1, length
      if (text(i:i) >= " " .and. text(i:i) <= "~") cycle
      why = "has a character that is not printable ASCII"
    end do
    is_refused = why /= ""
    call report(merge(CORVALE_REFUSED, CORVALE_OK, is_refused), &
      """" // text(:length) // """ " // why, stat, errmsg)
  end function

  !> Hands the outcome to the caller, or stops the program with it when the caller does not ask.
  subroutine report(code, reason, stat, errmsg)
    integer, intent(in) :: code
    character(len=*), intent(in) :: reason
    integer, intent(out), optional :: stat
    character(len=*), intent(inout), optional :: errmsg

    if (present(stat)) stat = code
    if (code == CORVALE_OK) return
    if (present(errmsg)) errmsg = reason
    if (.not. present(stat)) error stop trim(reason)
  end subroutine

  function usual_library() result(path)
    character(len=:), allocatable :: path
    integer :: length

    call get_environment_variable("CORVALE_LIBRARY", length=length)
    allocate (character(len=length) :: path)
    call get_environment_variable("CORVALE_LIBRARY", path)
    if (length == 0) path = "libCorvale.so.9"
  end function
end module
