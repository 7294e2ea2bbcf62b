! <@text:anchor#overview>
program columns
  implicit none
  integer, parameter :: default_width = 12  ! <@control:slider#width [40,42] {"min":1,"max":40}>
  integer, parameter :: number = 3
  integer :: widths(number)
  integer :: gaps, total

  widths = default_width
  widths(2) = 8
  !! <@task#sum>
  gaps = 2 * (number - 1)
  total = sum(widths) + gaps  ! <@output#total [2,7] {"format":"short"}>
  !! <@task#sum>
  write (*, '(i0, a, i0, a)') number, ' columns, ', total, ' characters'
end program columns
! <@appendix>
! <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
