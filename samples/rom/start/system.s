# The console and the end of the program, by calls of the Linux kernel: the emulator answers to them. On a board the
# driver of a serial port would stand here, under the same names.

EXIT    = 4001
READ    = 4003
WRITE   = 4004
INPUT   = 0
OUTPUT  = 1

        .text
        .set    noreorder

# int system_read(char *buffer, int size): how many bytes came; 0 at the end, -1 on an error.
        .globl  system_read
        .ent    system_read
system_read:
        move    $a2, $a1
        move    $a1, $a0
        li      $a0, INPUT
        li      $v0, READ
        syscall
        j       answer
        nop
        .end    system_read

# int system_write(const char *text, int size): how many bytes went, -1 on an error.
        .globl  system_write
        .ent    system_write
system_write:
        move    $a2, $a1
        move    $a1, $a0
        li      $a0, OUTPUT
        li      $v0, WRITE
        syscall
answer:
        beq     $a3, $zero, done        # the kernel tells an error here, and its number in $v0
        nop
        li      $v0, -1
done:
        jr      $ra
        nop
        .end    system_write

# void system_exit(int code): doesn't return.
        .globl  system_exit
        .ent    system_exit
system_exit:
        li      $v0, EXIT
        syscall
        b       system_exit
        nop
        .end    system_exit
