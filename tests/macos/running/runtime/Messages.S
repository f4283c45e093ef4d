// A message on x86-64: the arguments are kept while C++ looks for the method, and handed on to it. A message that
// no method answers goes, with its registers, to C++ as well.

// name: the entry; self, selector: where the two are; lookup: `Implementation lookup(MessageFrame*)`
.macro SEND name self lookup
    .globl \name
    .type \name, @function
\name:
    test \self, \self
    jz 1f
    push %rbp
    mov %rsp, %rbp
    sub $176, %rsp
    mov %rdi, (%rsp)
    mov %rsi, 8(%rsp)
    mov %rdx, 16(%rsp)
    mov %rcx, 24(%rsp)
    mov %r8, 32(%rsp)
    mov %r9, 40(%rsp)
    movsd %xmm0, 48(%rsp)
    movsd %xmm1, 56(%rsp)
    movsd %xmm2, 64(%rsp)
    movsd %xmm3, 72(%rsp)
    movsd %xmm4, 80(%rsp)
    movsd %xmm5, 88(%rsp)
    movsd %xmm6, 96(%rsp)
    movsd %xmm7, 104(%rsp)
    lea 16(%rbp), %r11
    mov %r11, 112(%rsp)
    mov %rsp, %rdi
    call \lookup
    mov %rax, %r11
    mov (%rsp), %rdi
    mov 8(%rsp), %rsi
    mov 16(%rsp), %rdx
    mov 24(%rsp), %rcx
    mov 32(%rsp), %r8
    mov 40(%rsp), %r9
    movsd 48(%rsp), %xmm0
    movsd 56(%rsp), %xmm1
    movsd 64(%rsp), %xmm2
    movsd 72(%rsp), %xmm3
    movsd 80(%rsp), %xmm4
    movsd 88(%rsp), %xmm5
    movsd 96(%rsp), %xmm6
    movsd 104(%rsp), %xmm7
    leave
    jmp *%r11
1:  // A message to nil: nothing happens, and the answer is zero.
    xor %eax, %eax
    xor %edx, %edx
    pxor %xmm0, %xmm0
    pxor %xmm1, %xmm1
    ret
.endm

// name: where a lookup sends a message without a method; answer: `void answer(MessageFrame*)`
.macro UNANSWERED name answer
    .globl \name
    .type \name, @function
\name:
    push %rbp
    mov %rsp, %rbp
    sub $176, %rsp
    mov %rdi, (%rsp)
    mov %rsi, 8(%rsp)
    mov %rdx, 16(%rsp)
    mov %rcx, 24(%rsp)
    mov %r8, 32(%rsp)
    mov %r9, 40(%rsp)
    movsd %xmm0, 48(%rsp)
    movsd %xmm1, 56(%rsp)
    movsd %xmm2, 64(%rsp)
    movsd %xmm3, 72(%rsp)
    movsd %xmm4, 80(%rsp)
    movsd %xmm5, 88(%rsp)
    movsd %xmm6, 96(%rsp)
    movsd %xmm7, 104(%rsp)
    lea 16(%rbp), %rax
    mov %rax, 112(%rsp)
    mov %rsp, %rdi
    call \answer
    mov 120(%rsp), %rax
    mov 128(%rsp), %rdx
    movsd 136(%rsp), %xmm0
    movsd 144(%rsp), %xmm1
    leave
    ret
.endm

.text
SEND objc_msgSend %rdi messageLookup
// The place for a large result comes before the receiver.
SEND objc_msgSend_stret %rsi messageLookupLarge
UNANSWERED messageWithoutMethod messageAnswer
UNANSWERED messageWithoutMethodLarge messageAnswerLarge

.section .note.GNU-stack, "", @progbits
