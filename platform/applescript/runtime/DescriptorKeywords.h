#pragma once

#include "platform/applescript/language/LanguageCodes.h"
#include "platform/applescript/language/SyntaxTree.h"
#include "platform/events/AEDataModel.h"
#include <array>

// What references, tests and records of scripts are called in descriptors; for the two that convert them.

namespace mac::applescript::keywords {

inline constexpr AEKeyword UserFields{"usrf"};
inline constexpr AEKeyword Want{"want"};
inline constexpr AEKeyword KeyForm{"form"};
inline constexpr AEKeyword KeyData{"seld"};
inline constexpr AEKeyword From{"from"};
inline constexpr AEKeyword InsertionObject{"kobj"};
inline constexpr AEKeyword InsertionPlace{"kpos"};
inline constexpr AEKeyword RangeStart{"star"};
inline constexpr AEKeyword RangeStop{"stop"};
inline constexpr AEKeyword FirstOperand{"obj1"};
inline constexpr AEKeyword SecondOperand{"obj2"};
inline constexpr AEKeyword Comparison{"relo"};
inline constexpr AEKeyword LogicalOperator{"logc"};
inline constexpr AEKeyword LogicalTerms{"term"};

inline constexpr DescType AliasType{"alis"};
inline constexpr DescType ScriptType{"scpt"};
inline constexpr DescType AbsoluteOrdinal{"abso"};
inline constexpr DescType InsertionLocation{"insl"};
inline constexpr DescType Range{"rang"};
inline constexpr DescType ComparisonTest{"cmpd"};
inline constexpr DescType LogicalTest{"logi"};
// The roots of what is said about each object that a test examines, and about the container of a range.
inline constexpr DescType ObjectBeingExamined{"exmn"};
inline constexpr DescType CurrentContainer{"ccnt"};
// An application by its name, as eppc:///Name.
inline constexpr DescType ApplicationURL{"aprl"};

// Values of 'form' and 'kpos', ordinals, relations between neighbours.
inline constexpr Code FormProperty = codes::PropertyForm;
inline constexpr Code FormUserProperty = codeOf("usrp");
inline constexpr Code FormIndex = codeOf("indx");
inline constexpr Code FormName = codeOf("name");
inline constexpr Code FormIdentifier = codes::Identifier;
inline constexpr Code FormRange = codes::RangeForm;
inline constexpr Code FormTest = codeOf("test");
inline constexpr Code FormRelative = codeOf("rele");
inline constexpr Code Beginning = codeOf("bgng");
inline constexpr Code End = codeOf("end ");
inline constexpr Code Before = codeOf("befo");
inline constexpr Code After = codeOf("afte");
inline constexpr Code Previous = codeOf("prev");
inline constexpr Code Next = codeOf("next");
inline constexpr Code OrdinalFirst = codeOf("firs");
inline constexpr Code OrdinalMiddle = codeOf("midd");
inline constexpr Code OrdinalLast = codeOf("last");
inline constexpr Code OrdinalAny = codeOf("any ");
inline constexpr Code OrdinalAll = codeOf("all ");
inline constexpr Code LogicalAnd = codeOf("AND ");
inline constexpr Code LogicalOr = codeOf("OR  ");
inline constexpr Code LogicalNot = codeOf("NOT ");

// A comparison that descriptors have; others are its negation, or the same the other way round.
struct ComparisonRow {
    Operation operation;
    Operation negation;
    Code code;
};
inline constexpr auto Comparisons = std::to_array<ComparisonRow>({
    {Operation::Equal, Operation::NotEqual, codeOf("=   ")},
    {Operation::Less, Operation::Less, codeOf("<   ")},
    {Operation::Greater, Operation::Greater, codeOf(">   ")},
    {Operation::AtMost, Operation::AtMost, codeOf("<=  ")},
    {Operation::AtLeast, Operation::AtLeast, codeOf(">=  ")},
    {Operation::StartsWith, Operation::StartsWith, codeOf("bgwt")},
    {Operation::EndsWith, Operation::EndsWith, codeOf("ends")},
    {Operation::Contains, Operation::DoesNotContain, codes::ContainsRelation},
});

// Whether a record of this class keeps it as its descriptor's type: a type that means something else would not be read
// as a record again.
bool namesRecord(Code type);

} // namespace mac::applescript::keywords
