! corvale_api: the 20 functions of libCorvale as the library sees them, and how they are found.
!
! Names are those of the C header. A text or array has its width in its declaration. The library is
! loaded by dlopen with local scope, so a program needs nothing of it when it is linked, and a
! function of the program that has the name of one of these is not called instead.
module corvale_api
  use, intrinsic :: iso_c_binding
  implicit none
  private
  public :: api_type, load_api, OpenLogFile, SetDupKeyMode

  abstract interface
    function CorvaleInit() bind(C) result(status)
      import :: c_int32_t
      integer(c_int32_t) :: status
    end function

    subroutine CorvaleGetInfo(info) bind(C)
      import :: c_char
      character(kind=c_char), intent(out) :: info(128)
    end subroutine

    subroutine GetInitDllNames(names) bind(C)
      import :: c_char
      character(kind=c_char), intent(out) :: names(512)
    end subroutine

    function OpenLogFile(fileName) bind(C) result(status)
      import :: c_char, c_int32_t
      character(kind=c_char), intent(in) :: fileName(512)
      integer(c_int32_t) :: status
    end function

    subroutine CloseLogFile() bind(C)
    end subroutine

    subroutine LogMessage(message) bind(C)
      import :: c_char
      character(kind=c_char), intent(in) :: message(128)
    end subroutine

    subroutine GetLastErrMsg(message) bind(C)
      import :: c_char
      character(kind=c_char), intent(out) :: message(128)
    end subroutine

    subroutine GetLastInfoMsg(message) bind(C)
      import :: c_char
      character(kind=c_char), intent(out) :: message(128)
    end subroutine

    function GetDupKeyMode() bind(C) result(mode)
      import :: c_int32_t
      integer(c_int32_t) :: mode
    end function

    function SetDupKeyMode(mode) bind(C) result(status)
      import :: c_int32_t
      integer(c_int32_t), value, intent(in) :: mode
      integer(c_int32_t) :: status
    end function

    function GetAllKeyMode() bind(C) result(mode)
      import :: c_int32_t
      integer(c_int32_t) :: mode
    end function

    function SetAllKeyMode(mode) bind(C) result(status)
      import :: c_int32_t
      integer(c_int32_t), value, intent(in) :: mode
      integer(c_int32_t) :: status
    end function

    subroutine ResetAllKeyMode() bind(C)
    end subroutine

    function GetElsetKeyMode() bind(C) result(mode)
      import :: c_int32_t
      integer(c_int32_t) :: mode
    end function

    function SetElsetKeyMode(mode) bind(C) result(status)
      import :: c_int32_t
      integer(c_int32_t), value, intent(in) :: mode
      integer(c_int32_t) :: status
    end function

    function CorvaleLoadFile(fileName) bind(C) result(status)
      import :: c_char, c_int32_t
      character(kind=c_char), intent(in) :: fileName(512)
      integer(c_int32_t) :: status
    end function

    subroutine GetMOICData(count, values) bind(C)
      import :: c_int32_t, c_double
      integer(c_int32_t), value, intent(in) :: count
      real(c_double), intent(out) :: values(count)
    end subroutine

    subroutine TestInterface(cIn, cOut, iIn, iOut, lIn, lOut, dIn, dOut, strIn, strOut, i3In, &
      i3Out, l3In, l3Out, d3In, d3Out, i6In, i6Out, l6In, l6Out, d6In, d6Out) bind(C)
      import :: c_char, c_int32_t, c_int64_t, c_double
      character(kind=c_char), value, intent(in) :: cIn
      character(kind=c_char), intent(out) :: cOut
      integer(c_int32_t), value, intent(in) :: iIn
      integer(c_int32_t), intent(out) :: iOut
      integer(c_int64_t), value, intent(in) :: lIn
      integer(c_int64_t), intent(out) :: lOut
      real(c_double), value, intent(in) :: dIn
      real(c_double), intent(out) :: dOut
      character(kind=c_char), intent(in) :: strIn(512)
      character(kind=c_char), intent(out) :: strOut(512)
      integer(c_int32_t), intent(in) :: i3In(3)
      integer(c_int32_t), intent(out) :: i3Out(3)
      integer(c_int64_t), intent(in) :: l3In(3)
      integer(c_int64_t), intent(out) :: l3Out(3)
      real(c_double), intent(in) :: d3In(3)
      real(c_double), intent(out) :: d3Out(3)
      integer(c_int32_t), intent(in) :: i6In(6)
      integer(c_int32_t), intent(out) :: i6Out(6)
      integer(c_int64_t), intent(in) :: l6In(6)
      integer(c_int64_t), intent(out) :: l6Out(6)
      real(c_double), intent(in) :: d6In(6)
      real(c_double), intent(out) :: d6Out(6)
    end subroutine

    subroutine TestInterface2(ch, i, l, d, str, i3, l3, d3, i6, l6, d6) bind(C)
      import :: c_char, c_int32_t, c_int64_t, c_double
      character(kind=c_char), intent(inout) :: ch
      integer(c_int32_t), intent(inout) :: i
      integer(c_int64_t), intent(inout) :: l
      real(c_double), intent(inout) :: d
      character(kind=c_char), intent(inout) :: str(512)
      integer(c_int32_t), intent(inout) :: i3(3)
      integer(c_int64_t), intent(inout) :: l3(3)
      real(c_double), intent(inout) :: d3(3)
      integer(c_int32_t), intent(inout) :: i6(6)
      integer(c_int64_t), intent(inout) :: l6(6)
      real(c_double), intent(inout) :: d6(6)
    end subroutine

    subroutine TestInterface3(i3In, i3Out, i6In, i6Out) bind(C)
      import :: c_int32_t
      integer(c_int32_t), intent(in) :: i3In(3)
      integer(c_int32_t), intent(out) :: i3Out(3)
      integer(c_int32_t), intent(in) :: i6In(6)
      integer(c_int32_t), intent(out) :: i6Out(6)
    end subroutine
  end interface

  !> The addresses of the 20 functions.
  type :: api_type
    procedure(CorvaleInit), pointer, nopass :: CorvaleInit => null()
    procedure(CorvaleGetInfo), pointer, nopass :: CorvaleGetInfo => null()
    procedure(GetInitDllNames), pointer, nopass :: GetInitDllNames => null()
    procedure(OpenLogFile), pointer, nopass :: OpenLogFile => null()
    procedure(CloseLogFile), pointer, nopass :: CloseLogFile => null()
    procedure(LogMessage), pointer, nopass :: LogMessage => null()
    procedure(GetLastErrMsg), pointer, nopass :: GetLastErrMsg => null()
    procedure(GetLastInfoMsg), pointer, nopass :: GetLastInfoMsg => null()
    procedure(GetDupKeyMode), pointer, nopass :: GetDupKeyMode => null()
    procedure(SetDupKeyMode), pointer, nopass :: SetDupKeyMode => null()
    procedure(GetAllKeyMode), pointer, nopass :: GetAllKeyMode => null()
    procedure(SetAllKeyMode), pointer, nopass :: SetAllKeyMode => null()
    procedure(ResetAllKeyMode), pointer, nopass :: ResetAllKeyMode => null()
    procedure(GetElsetKeyMode), pointer, nopass :: GetElsetKeyMode => null()
    procedure(SetElsetKeyMode), pointer, nopass :: SetElsetKeyMode => null()
    procedure(CorvaleLoadFile), pointer, nopass :: CorvaleLoadFile => null()
    procedure(GetMOICData), pointer, nopass :: GetMOICData => null()
    procedure(TestInterface), pointer, nopass :: TestInterface => null()
    procedure(TestInterface2), pointer, nopass :: TestInterface2 => null()
    procedure(TestInterface3), pointer, nopass :: TestInterface3 => null()
  end type

  ! As in <dlfcn.h> of Linux.
  integer(c_int), parameter :: RTLD_LOCAL = 0, RTLD_NOW = 2

  interface
    function dlopen(file, mode) bind(C) result(handle)
      import :: c_char, c_int, c_ptr
      character(kind=c_char), intent(in) :: file(*)
      integer(c_int), value, intent(in) :: mode
      type(c_ptr) :: handle
    end function

    function dlsym(handle, symbol) bind(C) result(address)
      import :: c_char, c_funptr, c_ptr
      type(c_ptr), value, intent(in) :: handle
      character(kind=c_char), intent(in) :: symbol(*)
      type(c_funptr) :: address
    end function

    function dlerror() bind(C) result(text)
      import :: c_ptr
      type(c_ptr) :: text
    end function

    function strlen(text) bind(C) result(length)
      import :: c_ptr, c_size_t
      type(c_ptr), value, intent(in) :: text
      integer(c_size_t) :: length
    end function
  end interface

contains

  !> Loads the library and finds its functions. `reason` is the loader's when one is missing, or
  !> empty.
  subroutine load_api(path, api, reason)
    character(len=*), intent(in) :: path
    type(api_type), intent(out) :: api
    character(len=:), allocatable, intent(out) :: reason
    type(c_ptr) :: library

    reason = ""
    library = dlopen(path // c_null_char, ior(RTLD_NOW, RTLD_LOCAL))
    if (.not. c_associated(library)) then
      reason = loaders_reason()
      return
    end if
    call c_f_procpointer(found("CorvaleInit"), api%CorvaleInit)
    call c_f_procpointer(found("CorvaleGetInfo"), api%CorvaleGetInfo)
    call c_f_procpointer(found("GetInitDllNames"), api%GetInitDllNames)
    call c_f_procpointer(found("OpenLogFile"), api%OpenLogFile)
    call c_f_procpointer(found("CloseLogFile"), api%CloseLogFile)
    call c_f_procpointer(found("LogMessage"), api%LogMessage)
    call c_f_procpointer(found("GetLastErrMsg"), api%GetLastErrMsg)
    call c_f_procpointer(found("GetLastInfoMsg"), api%GetLastInfoMsg)
    call c_f_procpointer(found("GetDupKeyMode"), api%GetDupKeyMode)
    call c_f_procpointer(found("SetDupKeyMode"), api%SetDupKeyMode)
    call c_f_procpointer(found("GetAllKeyMode"), api%GetAllKeyMode)
    call c_f_procpointer(found("SetAllKeyMode"), api%SetAllKeyMode)
    call c_f_procpointer(found("ResetAllKeyMode"), api%ResetAllKeyMode)
    call c_f_procpointer(found("GetElsetKeyMode"), api%GetElsetKeyMode)
    call c_f_procpointer(found("SetElsetKeyMode"), api%SetElsetKeyMode)
    call c_f_procpointer(found("CorvaleLoadFile"), api%CorvaleLoadFile)
    call c_f_procpointer(found("GetMOICData"), api%GetMOICData)
    call c_f_procpointer(found("TestInterface"), api%TestInterface)
    call c_f_procpointer(found("TestInterface2"), api%TestInterface2)
    call c_f_procpointer(found("TestInterface3"), api%TestInterface3)

  contains

    function found(name) result(address)
      character(len=*), intent(in) :: name
      type(c_funptr) :: address
      address = dlsym(library, name // c_null_char)
      if (.not. c_associated(address)) reason = loaders_reason()
    end function
  end subroutine

  function loaders_reason() result(reason)
    character(len=:), allocatable :: reason
    character(kind=c_char), pointer :: text(:)
    type(c_ptr) :: said
    integer :: i

    said = dlerror()
    call c_f_pointer(said, text, [strlen(said)])
    allocate (character(len=size(text)) :: reason)
    do i = 1, size(text)
      reason(i:i) = text(i)
    end do
  end function
end module
