#define VERSION 3
//      ^^^^^^^ Macro "3" = 3 refs=2
  #define SQUARE(x) ((x) * (x))
//        ^^^^^^ Macro "((x) * (x))" functionLike refs=4
  #define LOG(...) (void)0
//        ^^^ Macro "(void)0" functionLike variadic refs=1
  #define EMPTY
//        ^^^^^ Macro "" refs=2
  #define NEVER_USED "text"   +  1
//        ^^^^^^^^^^ Macro ""text" + 1" refs=0
  #define ADD(a, b) a + b
//        ^^^ Macro "a + b" functionLike refs=2
  #define ALIAS ADD
//        ^^^^^ Macro "ADD" refs=1
//              ^^^ Invocation of ADD from line 6: "1 + ((2) * (2))"
  #define PASTE(a, b) a##b
//        ^^^^^ Macro "a##b" functionLike refs=1
  #define QUOTE(x) #x
//        ^^^^^ Macro "#x" functionLike refs=1
  #define TWICE(x) x, x
//        ^^^^^ Macro "x, x" functionLike refs=1

  #if VERSION > 2 && defined(SQUARE)
  #ifdef EMPTY
  EMPTY int first = SQUARE(VERSION + 1);
//@3 ^^^^^ Expansion ""
//@3 ^^^^^ Invocation of EMPTY from line 4: ""
//          ^^^^^ Variable of int defined linkage=1 refs=1 external=first
//                  ^^^^^^ Invocation of SQUARE from line 2: "((3 + 1) * (3 + 1))"
//                  ^^^^^^^^^^^^^^^^^^^ Expansion "((3 + 1) * (3 + 1))"
//                         ^^^^^^^ Invocation of VERSION from line 1: "3"
  #endif
  #endif
  int sums[] = {ALIAS (1, SQUARE(2)), TWICE(ADD(3, 4))};
//    ^^^^ Variable of int defined linkage=1 refs=0 external=sums
//              ^^^^^ Invocation of ALIAS from line 7: "1 + ((2) * (2))"
//              ^^^^^^^^^^^^^^^^^^^^ Expansion "1 + ((2) * (2))"
//                        ^^^^^^ Invocation of SQUARE from line 2: "((2) * (2))"
//                                    ^^^^^ Invocation of TWICE from line 10: "3 + 4, 3 + 4"
//                                    ^^^^^^^^^^^^^^^^ Expansion "3 + 4, 3 + 4"
//                                          ^^^ Invocation of ADD from line 6: "3 + 4"
  int PASTE(sec, ond) = FROM_COMMAND_LINE;
//    ^^^^^ Invocation of PASTE from line 8: "second"
//    ^^^^^^ Variable of int defined linkage=1 refs=0 external=second
//    ^^^^^^^^^^^^^^^ Expansion "second"
//                      ^^^^^^^^^^^^^^^^^ Expansion "7"
//                      ^^^^^^^^^^^^^^^^^ Invocation of FROM_COMMAND_LINE from line 0: "7"
  const char *words = QUOTE(a b) __FILE__;
//            ^^^^^ Variable of char defined linkage=1 refs=0 external=words
//                    ^^^^^ Invocation of QUOTE from line 9: ""a b""
//                    ^^^^^^^^^^ Expansion ""a b""
//                               ^^^^^^^^ Expansion ""macros.c""
//                               ^^^^^^^^ Invocation of __FILE__ from line 0: ""macros.c""
  int lines = SQUARE(
//    ^^^^^ Variable of int defined linkage=1 refs=0 external=lines
//            ^^^^^^ Invocation of SQUARE from line 2: "((21) * (21))"
//            ^^^^^^^^^^^^^^^^^^^^^^^ Expansion "((21) * (21))"
      __LINE__);
//    ^^^^^^^^ Invocation of __LINE__ from line 0: "21"

  #undef VERSION
  #define VERSION 4
//        ^^^^^^^ Macro "4" = 4 refs=1
  int third = VERSION;
//    ^^^^^ Variable of int defined linkage=1 refs=0 external=third
//            ^^^^^^^ Expansion "4"
//            ^^^^^^^ Invocation of VERSION from line 24: "4"

  void log_it(void) {
//     ^^^^^^ Function log_it defined linkage=1 refs=0 external=log_it has effects
    LOG("%d", third);
//  ^^^ Invocation of LOG from line 3: "(void)0"
//  ^^^^^^^^^^^^^^^^ Expansion "(void)0"
    _Pragma("GCC diagnostic push") first = 1;
  }
