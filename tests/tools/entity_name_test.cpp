#include "../../tools/fe_db/entity_name.h"

#include <gtest/gtest.h>

namespace fe_db_tests {
namespace {

using fe_db_tools::matches;
using fe_db_tools::parseName;
using fe_db_tools::qualifiedName;

struct NameCase {
  const char* rule;
  const char* asked;
  const char* name;
  const char* scope;
  const char* identifier;
  bool isMeant;
};

struct EntityName : testing::TestWithParam<NameCase> {};

TEST_P(EntityName, MeansWhatItCanMean) {
  const auto& [rule, asked, name, scope, identifier, isMeant] = GetParam();
  const std::string qualified = qualifiedName(scope, name, identifier);
  EXPECT_EQ(matches(parseName(asked), name, qualified), isMeant) << qualified;
}

constexpr char kLess[] = "_ZNK1n1AltERKS0_";  // n::A::operator<(n::A const&) const
constexpr char kCall[] = "_ZN1n1AclEi";       // n::A::operator()(int)
constexpr char kHidden[] =
    "_ZN12_GLOBAL__N_16hiddenEi@/a.cc";  // (anonymous namespace)::hidden(int)
constexpr char kText[] =
    "_ZN1n3putERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE";  // n::put(std::string
                                                                         // const&)

INSTANTIATE_TEST_SUITE_P(
    Cases, EntityName,
    testing::Values(
        NameCase{"Plain", "put", "put", "", kText, true},
        NameCase{"Scope", "n::put", "put", "", kText, true},
        NameCase{"GlobalScope", "::n::put", "put", "", kText, true},
        NameCase{"EndOfAScope", "A::operator<", "operator<", "", kLess, true},
        NameCase{"PartOfAWord", "nA::operator<", "operator<", "", kLess, false},
        NameCase{"OtherScope", "m::put", "put", "", kText, false},
        NameCase{"ConstBefore", "put(const std::string&)", "put", "", kText, true},
        NameCase{"TypeWithoutScope", "n::put(const string &)", "put", "", kText, true},
        NameCase{"OtherParameters", "put(int)", "put", "", kText, false},
        NameCase{"NoParameters", "put()", "put", "", kText, false},
        NameCase{"CallOperator", "A::operator()", "operator()", "", kCall, true},
        NameCase{"CallOperatorWithParameters", "A::operator()(int)", "operator()", "", kCall, true},
        NameCase{"CallOperatorWithOthers", "A::operator()(long)", "operator()", "", kCall, false},
        NameCase{"OfOneUnit", "hidden(int)", "hidden", "", kHidden, true},
        NameCase{"Conversion", "A::operator bool", "operator bool", "", "_ZNK1n1AcvbEv", true},
        NameCase{"TypeByItsScope", "leveldb::DB", "DB", "leveldb", "", true},
        NameCase{"TypeInAnother", "leveldb::DB", "DB", "rocks", "", false},
        NameCase{"NotInC", "leveldb::DB", "DB", "", "", false}),
    [](const auto& test) { return std::string(test.param.rule); });

}  // namespace
}  // namespace fe_db_tests
