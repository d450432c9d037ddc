#include "record/record_fixture.h"

namespace fe_db_tests {

namespace {

/// What the annotated sources cannot show of instantiations.
class RecordTemplates : public RecordTest {};

TEST_F(RecordTemplates, MembersAreDeclaredOnceHoweverManyInstantiationsThereAre) {
  write("pattern.cpp",
        "template <class T> struct Pattern {\n"
        "  typedef T alias;\n"
        "  enum Choice { chosen };\n"
        "  T field;\n"
        "  template <class U> struct Inner { using Other = U; U inside; };\n"
        "  template <class U> using Renamed = U;\n"
        "};\n"
        "template <class P> long use(P p) {\n"
        "  typename P::alias a{};\n"
        "  typename P::template Inner<char>::Other b{};\n"
        "  typename P::template Inner<char> c{};\n"
        "  typename P::template Renamed<char> d{};\n"
        "  return p.field + c.inside + a + b + d + P::chosen;\n"
        "}\n"
        "long all = use(Pattern<int>()) + use(Pattern<long>()) + use(Pattern<char>());\n");
  recordQuietly({"--", "g++", "-c", "pattern.cpp"});
  EXPECT_EQ(rows(outputEnding(".comp.db"),
                 "SELECT Name, Count FROM Identifier WHERE Name IN ('alias', 'Choice', 'chosen', "
                 "'field', 'Inner', 'Other', 'inside', 'Renamed') ORDER BY Name;"
                 "SELECT Name, RefCount FROM Type JOIN Identifier USING (IdentifierId) WHERE "
                 "DeclLineNum BETWEEN 2 AND 6 ORDER BY Name;"
                 "SELECT Name, RefCount FROM Field JOIN Identifier USING (IdentifierId) ORDER BY "
                 "Name;"
                 "SELECT count(*) FROM TypeReference"),
            "Choice|1\nInner|1\nOther|1\nRenamed|1\nalias|1\nchosen|1\nfield|1\ninside|1\n"
            "Choice|0\nInner|2\nOther|1\nRenamed|1\nalias|1\n"
            "field|1\ninside|1\n"
            "0\n");
}

TEST_F(RecordTemplates, ConceptsReferToWhatTheyAskFor) {
  write("asked.cpp",
        "template <class T> concept Valued = requires { typename T::value_type; };\n"
        "template <class T> concept Sized = Valued<T> && requires(const T& t) { t.extent; };\n"
        "struct Given { using value_type = int; int extent; };\n"
        "struct Checked { using value_type = int; int extent; };\n"
        "struct Other { using value_type = int; int extent; };\n"
        "template <Sized T> int constrained(T) { return 1; }\n"
        "int result = constrained(Given());\n"
        "static_assert(Sized<Checked>);\n");
  recordQuietly({"--", "g++", "-std=c++20", "-c", "asked.cpp"});
  EXPECT_EQ(rows(outputEnding(".comp.db"),
                 "SELECT DeclLineNum, RefCount FROM Type JOIN Identifier USING (IdentifierId) "
                 "WHERE Name = 'value_type';"
                 "SELECT DeclLineNum, RefCount FROM Field"),
            "3|1\n4|1\n5|0\n3|1\n4|1\n5|0\n");
}

/// With the declarations of system headers and without.
class SystemTemplate : public RecordTemplates,
                       public testing::WithParamInterface<std::vector<std::string>> {};

TEST_P(SystemTemplate, RefersToWhatItsArgumentsHave) {
  std::filesystem::create_directories(sources() / "system");
  write("system/least.h",
        "template <class C> typename C::value_type least(const C& c) {\n"
        "  typename C::value_type result = c.begin()->weight;\n"
        "  return result;\n"
        "}\n");
  write("user.cpp",
        "#include <least.h>\n"
        "struct Item { int weight; };\n"
        "struct Items {\n"
        "  using value_type = int;\n"
        "  const Item* begin() const { return first; }\n"
        "  const Item* first;\n"
        "};\n"
        "int lightest(Items items) { return least(items); }\n");
  std::vector<std::string> arguments = GetParam();
  for (const char* argument : {"--", "g++", "-isystem", "system", "-c", "user.cpp"}) {
    arguments.emplace_back(argument);
  }
  recordQuietly(arguments);
  EXPECT_EQ(rows(outputEnding(".comp.db"),
                 "SELECT Name, RefCount FROM Type JOIN Identifier USING (IdentifierId) WHERE Name "
                 "= 'value_type';"
                 "SELECT Name, RefCount FROM Field JOIN Identifier USING (IdentifierId) WHERE Name "
                 "= 'weight';"
                 "SELECT Name, RefCount FROM Function JOIN Identifier i ON i.IdentifierId = "
                 "SourceNameId WHERE Name = 'begin'"),
            "value_type|2\nweight|1\nbegin|1\n");
}

INSTANTIATE_TEST_SUITE_P(Facts, SystemTemplate,
                         testing::Values(std::vector<std::string>{},
                                         std::vector<std::string>{"--system=all"}),
                         [](const auto& test) {
                           return std::string(test.param.empty() ? "Referenced" : "All");
                         });

}  // namespace

}  // namespace fe_db_tests
