! Loads an input file and prints what its cards set.
!
!     load_file INPUT-FILE
program load_file
  use corvale
  implicit none
  character(len=512) :: name
  double precision :: values(128)
  integer :: i

  if (command_argument_count() /= 1) error stop "usage: load_file INPUT-FILE"
  call get_command_argument(1, name)
  call corvale_load_file(name)

  print "(2(a, i0))", "element-set key mode ", corvale_elset_key_mode(), &
    ", all-key mode ", corvale_all_key_mode()
  values = corvale_moic_data(size(values))
  do i = 1, size(values)
    if (abs(values(i)) > 0) print "(a, i0, a, g0)", "MOIC(", i, ") = ", values(i)
  end do
end program
