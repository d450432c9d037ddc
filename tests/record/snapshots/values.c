enum names { NAME = 5, OTHER, HIDDEN, BIG = 0xFFFFFFFF };
//   ^^^^^ Type kind=4 refs=0 tagRefs=0
//           ^^^^ EnumConstant
//                     ^^^^^ EnumConstant
//                            ^^^^^^ EnumConstant
//                                    ^^^ EnumConstant
#define DECIMAL 42
//      ^^^^^^^ Macro "42" = 42 refs=0
#define SUFFIXED 42ul
//      ^^^^^^^^ Macro "42ul" = 42u refs=0
#define LONG 2147483648
//      ^^^^ Macro "2147483648" = 2147483648 refs=0
#define HEX 0xFFFFFFFF
//      ^^^ Macro "0xFFFFFFFF" = 4294967295u refs=0
#define HIGHEST 18446744073709551615u
//      ^^^^^^^ Macro "18446744073709551615u" = -1u refs=0
#define TOO_BIG 18446744073709551616u
//      ^^^^^^^ Macro "18446744073709551616u" refs=0
#define OCTAL 0777
//      ^^^^^ Macro "0777" = 511 refs=0
#define LETTER 'a'
//      ^^^^^^ Macro "'a'" = 97 refs=0
#define NEGATIVE_LETTER '\xff'
//      ^^^^^^^^^^^^^^^ Macro "'\xff'" = -1 refs=0
#define WIDE L'\x101'
//      ^^^^ Macro "L'\x101'" = 257 refs=0
#define SUM 1 + 2 * 3
//      ^^^ Macro "1 + 2 * 3" = 7 refs=0
#define WRAPS 0xFFFFFFFF + 1
//      ^^^^^ Macro "0xFFFFFFFF + 1" = 0u refs=0
#define MINUS_ONE -1
//      ^^^^^^^^^ Macro "-1" = -1 refs=0
#define MIXED (-1 < 1u)
//      ^^^^^ Macro "(-1 < 1u)" = 0 refs=0
#define CHOICE (1 ? -1 : 0u)
//      ^^^^^^ Macro "(1 ? -1 : 0u)" = 4294967295u refs=0
#define SHIFT (1u << 31)
//      ^^^^^ Macro "(1u << 31)" = 2147483648u refs=0
#define RIGHT (-8 >> 1)
//      ^^^^^ Macro "(-8 >> 1)" = -4 refs=0
#define MODULO (-7 % 3)
//      ^^^^^^ Macro "(-7 % 3)" = -1 refs=0
#define LOGIC (!0 && 2 || 1 / 0)
//      ^^^^^ Macro "(!0 && 2 || 1 / 0)" = 1 refs=0
#define NOT_EVALUATED (0 && 1 / 0)
//      ^^^^^^^^^^^^^ Macro "(0 && 1 / 0)" = 0 refs=0
#define LOWEST (-2147483647 - 1)
//      ^^^^^^ Macro "(-2147483647 - 1)" = -2147483648 refs=0
#define NESTED (DECIMAL - NAME)
//      ^^^^^^ Macro "(DECIMAL - NAME)" = 37 refs=0
#define NAME NAME
//      ^^^^ Macro "NAME" = 5 refs=0
#define CYCLE CYCLE
//      ^^^^^ Macro "CYCLE" refs=0
#define NEXT OTHER
//      ^^^^ Macro "OTHER" = 6 refs=0
#define UNSIGNED_NAME BIG
//      ^^^^^^^^^^^^^ Macro "BIG" = 4294967295u refs=0

#define DIVIDES (1 / 0)
//      ^^^^^^^ Macro "(1 / 0)" refs=0
#define OVERFLOWS (2147483647 + 1)
//      ^^^^^^^^^ Macro "(2147483647 + 1)" refs=0
#define TOO_FAR (1 << 32)
//      ^^^^^^^ Macro "(1 << 32)" refs=0
#define INTO_SIGN (1 << 31)
//      ^^^^^^^^^ Macro "(1 << 31)" refs=0
#define OF_NEGATIVE (-1 << 1)
//      ^^^^^^^^^^^ Macro "(-1 << 1)" refs=0
#define NO_QUOTIENT (LOWEST % -1)
//      ^^^^^^^^^^^ Macro "(LOWEST % -1)" refs=0
#define CAST ((int)3)
//      ^^^^ Macro "((int)3)" refs=0
#define SIZE sizeof(int)
//      ^^^^ Macro "sizeof(int)" refs=0
#define STRING "1"
//      ^^^^^^ Macro ""1"" refs=0
#define FLOATING 1.0
//      ^^^^^^^^ Macro "1.0" refs=0
#define FUNCTION(x) 1
//      ^^^^^^^^ Macro "1" functionLike refs=0
#define CALL FUNCTION(1)
//      ^^^^ Macro "FUNCTION(1)" refs=0
#define LOCAL HIDDEN
//      ^^^^^ Macro "HIDDEN" refs=0
#define MISSING unheard_of
//      ^^^^^^^ Macro "unheard_of" refs=0
#define TWO 1, 2
//      ^^^ Macro "1, 2" refs=0
#define OPEN (1
//      ^^^^ Macro "(1" refs=0
#define MALFORMED 09 + ''
//      ^^^^^^^^^ Macro "09 + ''" refs=0
#define EMPTY_TEXT
//      ^^^^^^^^^^ Macro "" refs=0
#define PASTED 1 ## 2
//      ^^^^^^ Macro "1 ## 2" refs=0
#define LINE __LINE__
//      ^^^^ Macro "__LINE__" refs=0
#define FROM_FLAG FROM_COMMAND_LINE
//      ^^^^^^^^^ Macro "FROM_COMMAND_LINE" = 7 refs=0

#define N 3
//      ^ Macro "3" = 3 refs=0
#define WITH_N (N * 2)
//      ^^^^^^ Macro "(N * 2)" = 6 refs=0
#undef WITH_N
#undef N
#define N 4
//      ^ Macro "4" = 4 refs=0
#define N 5
//      ^ Macro "5" = 5 refs=0
int hides(int HIDDEN) { return HIDDEN; }
//  ^^^^^ Function hides defined linkage=1 refs=0 external=hides no effect
//            ^^^^^^ Variable of int defined linkage=0 refs=1
