! A Fortran program on the drop-in BLAS: every kind of argument and of function result, with
! operands whose results are exact.
module reports
  implicit none
  character(6) :: reported = ''
  integer :: position = 0
end module

! The program's own: it takes the place of the library's.
subroutine xerbla(name, info)
  use reports
  implicit none
  character(*), intent(in) :: name
  integer, intent(in) :: info
  reported = name
  position = info
end subroutine

program fortran_caller
  use reports
  implicit none
  complex, external :: cdotu, cdotc
  complex(kind(1d0)), external :: zdotu, zdotc
  real, external :: sdot, sdsdot, snrm2, scnrm2, sasum, scasum, scabs1
  double precision, external :: ddot, dsdot, dnrm2, dznrm2, dasum, dzasum, dcabs1
  integer, external :: isamax, idamax, icamax, izamax
  external :: daxpy, caxpy, zscal, csscal, zdscal, dcopy, cswap
  external :: dgemv, zgerc, ztrsv, dsyr, dger
  logical, external :: lsame
  external :: drot, zdrot, drotg, crotg, drotm, drotmg

  integer :: faults = 0
  double precision :: g(2, 3) = reshape([1d0, 4d0, 2d0, 5d0, 3d0, 6d0], [2, 3])
  complex(kind(1d0)) :: w(2, 2) = reshape([(1d0, 0d0), (0d0, 0d0), (0d0, 1d0), (2d0, 0d0)], [2, 2])
  real :: s(3) = [3., 0., 4.], t(3) = [1., 2., -2.], sc
  double precision :: d(3) = [3d0, 0d0, -4d0], e(3) = [1d0, 2d0, -2d0], a, b, c, si, param(5)
  complex :: u(2) = [(1., 2.), (3., -1.)], v(2) = [(2., -1.), (1., 4.)], ca, cs
  complex(kind(1d0)) :: x(2) = [(1d0, 2d0), (3d0, -1d0)], y(2) = [(2d0, -1d0), (1d0, 4d0)]

  call check('cdotu', cdotu(2, u, 1, v, 1) == (11., 14.))
  call check('cdotc', cdotc(2, u, 1, v, 1) == (-1., 8.))
  call check('zdotu', zdotu(2, x, 1, y, 1) == (11d0, 14d0))
  call check('zdotc', zdotc(2, x, 1, y, 1) == (-1d0, 8d0))
  ! Results inside of expressions: a misplaced result would spoil the stack of the evaluation.
  call check('zdotu and zdotc', zdotu(2, x, 1, y, 1) * zdotc(2, x, 1, y, 1) == (-123d0, 74d0))
  call check('cdotu backwards', cdotu(2, u, -1, v, 1) == (-2., 1.))

  call check('sdot', sdot(3, s, 1, t, 1) == -5.)
  call check('ddot', ddot(3, d, 1, e, 1) == 11d0)
  call check('dsdot', dsdot(3, [1., 1., 1.], 1, [1e8, 1., -1e8], 1) == 1d0)
  call check('sdsdot', sdsdot(3, 0.5, [1., 1., 1.], 1, [1e8, 1., -1e8], 1) == 1.5)
  call check('snrm2', snrm2(3, s, 1) == 5.)
  call check('dnrm2', dnrm2(3, d, 1) == 5d0)
  call check('scnrm2', scnrm2(1, (3., -4.), 1) == 5.)
  call check('dznrm2', dznrm2(1, (3d0, -4d0), 1) == 5d0)
  call check('sasum', sasum(3, t, 1) == 5.)
  call check('dasum', dasum(3, d, 1) == 7d0)
  call check('scasum', scasum(2, u, 1) == 7.)
  call check('dzasum', dzasum(2, y, 1) == 8d0)
  call check('scabs1', scabs1((3., -4.)) == 7.)
  call check('dcabs1', dcabs1((-3d0, 4d0)) == 7d0)
  call check('isamax', isamax(3, t, 1) == 2)
  call check('idamax', idamax(3, d, 1) == 3)
  call check('icamax', icamax(2, v, 1) == 2)
  call check('izamax', izamax(0, x, 1) == 0)

  call daxpy(3, 2d0, d, 1, e, 1)
  call check('daxpy', all(e == [7d0, 2d0, -10d0]))
  call caxpy(2, (0., 1.), u, 1, v, 1)
  call check('caxpy', all(v == [(0., 0.), (2., 7.)]))
  call zscal(2, (0d0, 1d0), x, 1)
  call check('zscal', all(x == [(-2d0, 1d0), (1d0, 3d0)]))
  call zdscal(2, 2d0, x, 1)
  call check('zdscal', all(x == [(-4d0, 2d0), (2d0, 6d0)]))
  call csscal(2, 2., v, 1)
  call check('csscal', all(v == [(0., 0.), (4., 14.)]))
  call cswap(2, u, 1, v, -1)
  call check('cswap', all(u == [(4., 14.), (0., 0.)]) .and. all(v == [(3., -1.), (1., 2.)]))
  call dcopy(2, d, 2, e, 1)
  call check('dcopy', all(e == [3d0, -4d0, -10d0]))

  a = 3; b = 4
  call drotg(a, b, c, si)
  call check('drotg', abs(a - 5) + abs(c - 0.6d0) + abs(si - 0.8d0) + abs(b - 1 / 0.6d0) < 1d-14)
  ca = (3., 0.)
  call crotg(ca, (0., 4.), sc, cs)
  call check('crotg', abs(ca - (5., 0.)) + abs(sc - 0.6) + abs(cs - (0., -0.8)) < 1e-6)
  d = [1d0, 2d0, 3d0]; e = [4d0, 5d0, 6d0]
  call drot(3, d, 1, e, 1, 0d0, 1d0)
  call check('drot', all(d == [4d0, 5d0, 6d0]) .and. all(e == [-1d0, -2d0, -3d0]))
  call zdrot(2, x, 1, y, 1, 0d0, 1d0)
  call check('zdrot', all(x == [(2d0, -1d0), (1d0, 4d0)]) .and. all(y == [(4d0, -2d0), (-2d0, -6d0)]))
  a = 1; b = 1; c = 1
  call drotmg(a, b, c, 1d0, param)
  call check('drotmg', a == 0.5d0 .and. b == 0.5d0 .and. c == 2d0 .and. param(1) == 1d0)
  d = [1d0, 2d0, 3d0]; e = [4d0, 5d0, 6d0]
  call drotm(3, d, 1, e, 1, [0d0, 7d0, 2d0, 3d0, 7d0])
  call check('drotm', all(d == [13d0, 17d0, 21d0]) .and. all(e == [6d0, 9d0, 12d0]))

  d = [1d0, 10d0, 100d0]; e = 7
  call dgemv('No transpose', 2, 3, 1d0, g, 2, d, 1, 0d0, e, 1)
  call check('dgemv', all(e == [321d0, 654d0, 7d0]))
  call dgemv('t', 2, 3, 2d0, g, 2, d, 1, 1d0, e, 1)
  call check('dgemv of the transpose', all(e == [403d0, 758d0, 133d0]))
  x = [(1d0, 2d0), (3d0, -1d0)]; y = [(0d0, 1d0), (1d0, 0d0)]
  call zgerc(2, 2, (1d0, 0d0), x, 1, y, 1, w, 2)
  call check('zgerc', all(w(:, 1) == [(3d0, -1d0), (-1d0, -3d0)]) .and. &
                      all(w(:, 2) == [(1d0, 3d0), (5d0, -1d0)]))
  call ztrsv('Upper', 'Conjugate', 'Unit', 2, w, 2, x, 1)
  call check('ztrsv', all(x == [(1d0, 2d0), (-4d0, 0d0)]))
  call check('lsame', lsame('Upper', 'u') .and. .not. lsame('L', 'u'))
  ! Wrong arguments: xerbla reports them here, and the routine returns.
  call dger(-1, 2, 1d0, d, 1, d, 1, g, 2)
  call check('dger', reported == 'DGER' .and. position == 1)
  call dsyr('x', 2, 1d0, d, 1, g, 2)
  call check('dsyr', reported == 'DSYR' .and. position == 1)
  call dgemv('N', 2, 3, 1d0, g, 1, d, 1, 0d0, e, 1)
  call check('dgemv with a bad lda', reported == 'DGEMV' .and. position == 6 .and. e(1) == 403d0)

  if (faults > 0) stop 1
  print '(a)', 'every call from Fortran came out right'

contains

  subroutine check(name, right)
    character(*), intent(in) :: name
    logical, intent(in) :: right
    if (right) return
    print '(2a)', 'wrong: ', name
    faults = faults + 1
  end subroutine

end program
