! A Fortran program on the drop-in BLAS: the line through points by the normal equations.
program least_squares
  implicit none
  integer, parameter :: n = 100
  double precision :: a(n, 2), y(n), normal(2, 2), line(2)
  double precision, external :: ddot
  integer :: i
  do i = 1, n
    a(i, :) = [1d0, i * 1d0]
    y(i) = 3d0 + 0.5d0 * i
  end do
  call dsyrk('L', 'T', 2, n, 1d0, a, n, 0d0, normal, 2)
  call dgemv('T', n, 2, 1d0, a, n, y, 1, 0d0, line, 1)
  ! Cholesky factor of a matrix of order two, then the two solves.
  normal(1, 1) = sqrt(normal(1, 1))
  normal(2, 1) = normal(2, 1) / normal(1, 1)
  normal(2, 2) = sqrt(normal(2, 2) - normal(2, 1)**2)
  call dtrsv('L', 'N', 'N', 2, normal, 2, line, 1)
  call dtrsv('L', 'T', 'N', 2, normal, 2, line, 1)
  print '(a, f9.6, a, f9.6, a)', 'y =', line(1), ' +', line(2), ' x'
  call dgemv('N', n, 2, -1d0, a, n, line, 1, 1d0, y, 1)
  if (.not. ddot(n, y, 1, y, 1) < 1d-18) stop 1
end program
