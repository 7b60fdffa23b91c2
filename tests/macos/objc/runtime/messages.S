// Message sends (x86-64, System V): finds the method with every argument register as it was, and goes on there.

.macro SAVE_ARGUMENTS
        pushq   %rbp
        .cfi_def_cfa_offset 16
        .cfi_offset %rbp, -16
        movq    %rsp, %rbp
        .cfi_def_cfa_register %rbp
        subq    $192, %rsp
        movq    %rdi, 0(%rsp)
        movq    %rsi, 8(%rsp)
        movq    %rdx, 16(%rsp)
        movq    %rcx, 24(%rsp)
        movq    %r8, 32(%rsp)
        movq    %r9, 40(%rsp)
        movq    %rax, 48(%rsp)
        movaps  %xmm0, 64(%rsp)
        movaps  %xmm1, 80(%rsp)
        movaps  %xmm2, 96(%rsp)
        movaps  %xmm3, 112(%rsp)
        movaps  %xmm4, 128(%rsp)
        movaps  %xmm5, 144(%rsp)
        movaps  %xmm6, 160(%rsp)
        movaps  %xmm7, 176(%rsp)
.endm

// The method is in %rax.
.macro RESTORE_ARGUMENTS_AND_GO
        movq    %rax, %r11
        movq    0(%rsp), %rdi
        movq    8(%rsp), %rsi
        movq    16(%rsp), %rdx
        movq    24(%rsp), %rcx
        movq    32(%rsp), %r8
        movq    40(%rsp), %r9
        movq    48(%rsp), %rax
        movaps  64(%rsp), %xmm0
        movaps  80(%rsp), %xmm1
        movaps  96(%rsp), %xmm2
        movaps  112(%rsp), %xmm3
        movaps  128(%rsp), %xmm4
        movaps  144(%rsp), %xmm5
        movaps  160(%rsp), %xmm6
        movaps  176(%rsp), %xmm7
        leave
        .cfi_def_cfa %rsp, 8
        jmp     *%r11
.endm

// \receiver and \selector: the registers that hold them. A message to nil answers zero.
.macro SEND name, receiver, selector
        .globl  \name
        .type   \name, @function
\name:
        .cfi_startproc
        testq   \receiver, \receiver
        je      1f
        SAVE_ARGUMENTS
        movq    \selector, %rax
        movq    (\receiver), %rdi
        movq    %rax, %rsi
        call    ferrowyn_objc_method
        RESTORE_ARGUMENTS_AND_GO
        .cfi_endproc
1:      movq    %rdi, %rax
        xorl    %edx, %edx
        xorps   %xmm0, %xmm0
        xorps   %xmm1, %xmm1
        ret
        .size   \name, .-\name
.endm

        .text
        SEND objc_msgSend, %rdi, %rsi
        SEND objc_msgSend_stret, %rsi, %rdx

        .globl  objc_msgSendSuper2
        .type   objc_msgSendSuper2, @function
objc_msgSendSuper2:
        .cfi_startproc
        SAVE_ARGUMENTS
        movq    8(%rdi), %rdi
        movq    8(%rdi), %rdi
        call    ferrowyn_objc_method
        movq    0(%rsp), %rdi
        movq    (%rdi), %rdi
        movq    %rdi, 0(%rsp)
        RESTORE_ARGUMENTS_AND_GO
        .cfi_endproc
        .size   objc_msgSendSuper2, .-objc_msgSendSuper2

        .globl  objc_msgSendSuper2_stret
        .type   objc_msgSendSuper2_stret, @function
objc_msgSendSuper2_stret:
        .cfi_startproc
        SAVE_ARGUMENTS
        movq    8(%rsi), %rdi
        movq    8(%rdi), %rdi
        movq    %rdx, %rsi
        call    ferrowyn_objc_method
        movq    8(%rsp), %rsi
        movq    (%rsi), %rsi
        movq    %rsi, 8(%rsp)
        RESTORE_ARGUMENTS_AND_GO
        .cfi_endproc
        .size   objc_msgSendSuper2_stret, .-objc_msgSendSuper2_stret

        .section .note.GNU-stack,"",@progbits
