; <@text:anchor#overview>
source_filename = "columns.c"

@width = dso_local constant i32 12, align 4 ; <@control:slider#width [32,34] {"min":1,"max":40}>
@format = private constant [15 x i8] c"%d characters\0A\00"

declare i32 @printf(ptr, ...)

define i32 @main() {
entry:
  %first = load i32, ptr @width
  ; <@task#sum>
  %gaps = mul nsw i32 2, 2
  %total = add nsw i32 %first, %gaps ; <@output#total [3,8] {"format":"short"}>
  ; <@task#sum>
  %printed = call i32 (ptr, ...) @printf(ptr @format, i32 %total)
  ret i32 0
}
; <@appendix>
; <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
