# Start-up code: the first bytes of the image, and the first to run. Nothing is set up yet but this code itself.

        .text
        .set    noreorder
        .globl  __start
        .ent    __start
__start:
        lui     $gp, %hi(_gp)           # small data go by the global pointer
        addiu   $gp, $gp, %lo(_gp)
        lui     $sp, %hi(stack_top)
        addiu   $sp, $sp, %lo(stack_top)

# Variables with a value lie in the ROM, behind the code, and run in the RAM.
        la      $t0, data_in_rom
        la      $t1, data_start
        la      $t2, data_end
        beq     $t0, $t1, clear         # whoever loaded the program has put them where they run
        nop
copy:
        beq     $t1, $t2, clear
        nop
        lw      $t3, 0($t0)
        addiu   $t0, $t0, 4
        sw      $t3, 0($t1)
        b       copy
        addiu   $t1, $t1, 4             # in the delay slot

# Variables without one begin as zero.
clear:
        la      $t1, bss_start
        la      $t2, bss_end
zero:
        beq     $t1, $t2, enter
        nop
        sw      $zero, 0($t1)
        b       zero
        addiu   $t1, $t1, 4

enter:
        jal     main
        addiu   $sp, $sp, -16           # room for the arguments, as every function expects
        move    $a0, $v0                # what main returns is the exit code
        j       system_exit
        nop
        .end    __start
