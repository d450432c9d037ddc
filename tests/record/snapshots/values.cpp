enum plain { PLAIN = 1, NARROW };
//   ^^^^^ Type kind=4 refs=0 tagRefs=0
//           ^^^^^ EnumConstant
//                      ^^^^^^ EnumConstant
enum narrow : unsigned char { SMALL = 200 };
//   ^^^^^^ Type kind=4 refs=0 tagRefs=0
//                            ^^^^^ EnumConstant
enum class scoped { PLAIN_TOO };
//         ^^^^^^ Type kind=4 refs=0 tagRefs=0
//                  ^^^^^^^^^ EnumConstant
namespace inner { enum { INSIDE, TWICE }; }
//                ^ Type kind=4 unnamed refs=0 tagRefs=0
//                       ^^^^^^ EnumConstant
//                               ^^^^^ EnumConstant
enum { TWICE = 7 };
//@1 ^ Type kind=4 unnamed refs=0 tagRefs=0
//     ^^^^^ EnumConstant
#define TRUTH true
//      ^^^^^ Macro "true" = 1 refs=0
#define WORDS (1 and not 0)
//      ^^^^^ Macro "(1 and not 0)" = 1 refs=0
#define OF_PLAIN NARROW
//      ^^^^^^^^ Macro "NARROW" = 2 refs=0
#define OF_SMALL -SMALL
//      ^^^^^^^^ Macro "-SMALL" = -200 refs=0
#define OF_SCOPED PLAIN_TOO
//      ^^^^^^^^^ Macro "PLAIN_TOO" refs=0
#define OF_INNER INSIDE
//      ^^^^^^^^ Macro "INSIDE" refs=0
#define AMBIGUOUS TWICE
//      ^^^^^^^^^ Macro "TWICE" refs=0
#define SEPARATED 1'000
//      ^^^^^^^^^ Macro "1'000" = 1000 refs=0
#define OWN_SUFFIX 1_k
//      ^^^^^^^^^^ Macro "1_k" refs=0
#define TEMPLATE (2 > 1)
//      ^^^^^^^^ Macro "(2 > 1)" = 1 refs=0
#define SPACESHIP (1 <=> 2)
//      ^^^^^^^^^ Macro "(1 <=> 2)" refs=0
