  #define SUM(a, b) (a + b)
//        ^^^ Macro "(a + b)" functionLike refs=3
  #define JOIN(a, b) a##b
//        ^^^^ Macro "a##b" functionLike refs=1
  #define TEXT(x) #x
//        ^^^^ Macro "#x" functionLike refs=1
  int one = SUM(1, SUM(2, 3));
//    ^^^ Variable of int defined linkage=1 refs=0 external=one
//          ^ Origin "(" 1:21 at +0
//          ^ Origin "(" 1:21 parameter at +5
//          ^ Origin ")" 1:27 at +12
//          ^ Origin ")" 1:27 parameter at +11
//          ^ Origin "+" 1:24 at +3
//          ^ Origin "+" 1:24 parameter at +8
//          ^ Origin "1" 4:17 parameter at +1
//          ^ Origin "2" 4:24 parameter at +6
//          ^ Origin "3" 4:27 parameter at +10
//          ^^^ Invocation of SUM from line 1: "(1 + (2 + 3))"
//          ^^^^^^^^^^^^^^^^^ Expansion "(1 + (2 + 3))"
//                 ^^^ Invocation of SUM from line 1: "(2 + 3)"
  int JOIN(tw, o) = __LINE__ + SUM(__LINE__, FROM_COMMAND_LINE);
//    ^ Origin "two" 2:22 at +0
//    ^^^ Variable of int defined linkage=1 refs=0 external=two
//    ^^^^ Invocation of JOIN from line 2: "two"
//    ^^^^^^^^^^^ Expansion "two"
//                  ^ Origin "5" predefined at +0
//                  ^^^^^^^^ Expansion "5"
//                  ^^^^^^^^ Invocation of __LINE__ from line 0: "5"
//                             ^ Origin "(" 1:21 at +0
//                             ^ Origin ")" 1:27 at +6
//                             ^ Origin "+" 1:24 at +3
//                             ^ Origin "5" 5:36 parameter at +1
//                             ^ Origin "7" command line parameter at +5
//                             ^^^ Invocation of SUM from line 1: "(5 + 7)"
//                             ^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^ Expansion "(5 + 7)"
//                                 ^^^^^^^^ Invocation of __LINE__ from line 0: "5"
//                                           ^^^^^^^^^^^^^^^^^ Invocation of FROM_COMMAND_LINE from line 0: "7"
  const char *three = TEXT(four five);
//            ^^^^^ Variable of char defined linkage=1 refs=0 external=three
//                    ^ Origin ""four five"" 3:19 at +0
//                    ^^^^ Invocation of TEXT from line 3: ""four five""
//                    ^^^^^^^^^^^^^^^ Expansion ""four five""
