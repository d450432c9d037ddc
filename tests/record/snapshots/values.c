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
//      ^^^^ Macro "FUNCTION(1)" = 1 refs=0
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
//      ^^^^^^ Macro "1 ## 2" = 12 refs=0
#define LINE __LINE__
//      ^^^^ Macro "__LINE__" refs=0
#define ID(x) x
//      ^^ Macro "x" functionLike refs=0
#define SUFFIX(c) c ## ULL
//      ^^^^^^ Macro "c ## ULL" functionLike refs=0
#define JOIN(a, b) a ## b
//      ^^^^ Macro "a ## b" functionLike refs=0
#define JOIN_VALUES(a, b) JOIN(a, b)
//      ^^^^^^^^^^^ Macro "JOIN(a, b)" functionLike refs=0
#define FIRST(a, ...) a
//      ^^^^^ Macro "a" functionLike variadic refs=0
#define OPTIONAL(a, ...) FIRST(7, ## __VA_ARGS__)
//      ^^^^^^^^ Macro "FIRST(7, ## __VA_ARGS__)" functionLike variadic refs=0
#define IGNORE(a) 8
//      ^^^^^^ Macro "8" functionLike refs=0
#define TEXT(a) #a
//      ^^^^ Macro "#a" functionLike refs=0
#define NONE() 9
//      ^^^^ Macro "9" functionLike refs=0
#define MY_HAS(x) __has_builtin(x)
//      ^^^^^^ Macro "__has_builtin(x)" functionLike refs=0
#define OF_SUFFIX (-SUFFIX(42))
//      ^^^^^^^^^ Macro "(-SUFFIX(42))" = -429 refs=0
#include <stdint.h>
#define OF_LIBRARY INT64_MAX
//      ^^^^^^^^^^ Macro "INT64_MAX" = 9223372036854775807 refs=0
#define OF_JOINED JOIN(DECI, MAL)
//      ^^^^^^^^^ Macro "JOIN(DECI, MAL)" = 42 refs=0
#define OF_JOINED_VALUES JOIN_VALUES(DECIMAL, DECIMAL)
//      ^^^^^^^^^^^^^^^^ Macro "JOIN_VALUES(DECIMAL, DECIMAL)" = 4242 refs=0
#define OF_EMPTY JOIN(, 5) + JOIN(5, ) + JOIN(,)0
//      ^^^^^^^^ Macro "JOIN(, 5) + JOIN(5, ) + JOIN(,)0" = 10 refs=0
#define OF_REST FIRST(3, 4, 5)
//      ^^^^^^^ Macro "FIRST(3, 4, 5)" = 3 refs=0
#define OF_NO_REST OPTIONAL(1)
//      ^^^^^^^^^^ Macro "OPTIONAL(1)" = 7 refs=0
#define OF_TEXT IGNORE(TEXT(a))
//      ^^^^^^^ Macro "IGNORE(TEXT(a))" = 8 refs=0
#define OF_NOTHING NONE()
//      ^^^^^^^^^^ Macro "NONE()" = 9 refs=0
#define OF_COMMA ID((1, 2))
//      ^^^^^^^^ Macro "ID((1, 2))" refs=0
#define OF_ITSELF ID(ID(ID(4)))
//      ^^^^^^^^^ Macro "ID(ID(ID(4)))" = 4 refs=0
#define NEXT_TO_IT ID (4)
//      ^^^^^^^^^^ Macro "ID (4)" = 4 refs=0
#define LATER ID
//      ^^^^^ Macro "ID" refs=0
#define OF_LATER LATER(6)
//      ^^^^^^^^ Macro "LATER(6)" = 6 refs=0
#define OF_BUILTIN (__has_builtin(__builtin_clz) + MY_HAS(nothing_of_the_kind))
//      ^^^^^^^^^^ Macro "(__has_builtin(__builtin_clz) + MY_HAS(nothing_of_the_kind))" = 1 refs=0
#define OF_ATTRIBUTE __has_attribute(always_inline)
//      ^^^^^^^^^^^^ Macro "__has_attribute(always_inline)" = 1 refs=0
#define OF_FEATURE (!__has_feature(cxx_exceptions))
//      ^^^^^^^^^^ Macro "(!__has_feature(cxx_exceptions))" = 1 refs=0
#define OF_HEADER __has_include(<stddef.h>)
//      ^^^^^^^^^ Macro "__has_include(<stddef.h>)" = 1 refs=0
#define OF_NO_HEADER __has_include(<there/is none.h>)
//      ^^^^^^^^^^^^ Macro "__has_include(<there/is none.h>)" = 0 refs=0
#define OF_LOCAL_HEADER __has_include("values.c")
//      ^^^^^^^^^^^^^^^ Macro "__has_include("values.c")" refs=0
#define WITHOUT_CALL ID
//      ^^^^^^^^^^^^ Macro "ID" refs=0
#define TOO_MANY NONE(1)
//      ^^^^^^^^ Macro "NONE(1)" refs=0
#define TOO_FEW JOIN(1)
//      ^^^^^^^ Macro "JOIN(1)" refs=0
#define UNFINISHED ID(1
//      ^^^^^^^^^^ Macro "ID(1" refs=0
#define TWO_TOKENS JOIN(+, 5)
//      ^^^^^^^^^^ Macro "JOIN(+, 5)" refs=0
#define INDIRECT_CYCLE ID(INDIRECT_CYCLE)
//      ^^^^^^^^^^^^^^ Macro "ID(INDIRECT_CYCLE)" refs=0
#define OF_NOTHING_AT_ALL __has_builtin()
//      ^^^^^^^^^^^^^^^^^ Macro "__has_builtin()" refs=0
#define OF_OPERATOR __has_builtin(+ +)
//      ^^^^^^^^^^^ Macro "__has_builtin(+ +)" refs=0
#define GROWS(x) ID(x) + ID(x)
//      ^^^^^ Macro "ID(x) + ID(x)" functionLike refs=0
#define GROWN GROWS(GROWS(GROWS(GROWS(GROWS(GROWS(GROWS(1)))))))
//      ^^^^^ Macro "GROWS(GROWS(GROWS(GROWS(GROWS(GROWS(GROWS(1)))))))" refs=0
#define BEFORE SUFFIX(1)
//      ^^^^^^ Macro "SUFFIX(1)" = 1u refs=0
#undef BEFORE
#undef SUFFIX
#define SUFFIX(c) c ## 9
//      ^^^^^^ Macro "c ## 9" functionLike refs=0
#define AFTER SUFFIX(1)
//      ^^^^^ Macro "SUFFIX(1)" = 19 refs=0
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
