! The card file peer in Fortran: line by line, its own list-directed read for the numbers.
subroutine load_cards_fortran(name, length, moic, elset, allkey) bind(c)
  use iso_c_binding
  implicit none
  integer(c_int), value :: length
  character(kind=c_char), intent(in) :: name(length)
  real(c_double), intent(inout) :: moic(128)
  integer(c_int), intent(inout) :: elset, allkey
  character(len=512) :: line, upper, path
  integer :: unit, status, i, code

  path = ' '
  do i = 1, length
    path(i:i) = name(i)
  end do
  open(newunit=unit, file=trim(path), action='read', status='old', iostat=status)
  if (status /= 0) return
  do
    line = ' '
    read(unit, '(A)', iostat=status) line
    if (status /= 0) exit
    if (line(1:1) == '*') cycle
    if (len_trim(line) == 0) cycle
    upper = line
    do i = 1, 512
      code = iachar(upper(i:i))
      if (code >= 97 .and. code <= 122) upper(i:i) = achar(code - 32)
    end do
    if (upper(1:8) == 'QZ_MOIC ') then
      read(line(9:512), *, iostat=status) moic
    else if (upper(1:9) == 'QZ_DMA_ON') then
      elset = 1
    else if (upper(1:13) == 'QZ_DMA_ALL_ON') then
      allkey = 1
    end if
  end do
  close(unit)
end subroutine
