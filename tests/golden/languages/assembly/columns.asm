; <@text:anchor#overview>
        global  _start
        section .data
width:  dd      12                      ; <@control:slider#width [16,18] {"min":1,"max":40}>
        dd      8
        dd      10
count   equ     3

        section .bss
total:  resd    1

        section .text
_start: mov     ecx, count
        mov     eax, 2*(count-1)
;; <@task#sum>
next:   add     eax, [width+4*ecx-4]
        mov     [total], eax            ; <@output#total [17,22] {"format":"short"}>
;; <@task#sum>
        loop    next
        mov     eax, 60
        xor     edi, edi
        syscall
; <@appendix>
; <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
