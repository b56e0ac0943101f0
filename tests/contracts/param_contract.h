// What every parameter tree promises. A backend brings itself along as a type with
//
//     CQZRef<IParam> root();                       // empty, made anew for each test
//     static constexpr ParamDifferences differs;
//
// and instantiates the suite: INSTANTIATE_TYPED_TEST_SUITE_P(Memory, ParamContract, MemoryTree);
#pragma once

#include <gtest/gtest.h>

#include "qzparam.h"
#include "qzref.h"
#include "qzvariant.h"
#include "support/param_outline.h"
#include "support/variants.h"

#include <algorithm>
#include <bitset>
#include <iterator>
#include <string>
#include <vector>

// Where a backend goes its own way; the defaults are the memory tree's.
struct ParamDifferences {
    bool ordered = true;               // names come in the order in which they were first stored
    bool default_value_is_at = true;   // null and "" name the value "@"
    bool value_paths = true;           // "\" in a value's name separates levels
    bool drops_missing_node = true;    // OpenSubParam("a\b", 1) makes b when there is no a
    bool makes_last_node = true;       // OpenSubParam("a\b", 1) makes b when there is an a
    bool makes_missing_nodes = true;   // CreateSubParam("a\\b") makes a too, and not only its name
    bool deletes_by_path = false;      // "\" in DeleteSubParam's name separates levels
    bool marks_nodes = false;          // each node has an empty value "@" from the start
    bool clear_keeps_children = false; // emptied
    bool create_empties = true;        // CreateSubParam of an existing child
    bool miss_leaves_out_alone = true; // GetValue of what is not there
    bool deleted_child_is_gone = true; // and not only emptied
    bool holder_keeps_empty_node = true;
    bool names_apart = true;            // a value and a child may have one name
    std::bitset<QZVT_COUNT> lost_types; // which do not come back as they were stored
};

template <class Backend>
class ParamContract : public testing::Test {
protected:
    static constexpr ParamDifferences differs = Backend::differs;

    std::vector<std::string> listed(CTEnum<const char*>* names) const {
        std::vector<std::string> all = take_names(names);
        if (!differs.ordered) std::sort(all.begin(), all.end());
        return all;
    }
    std::vector<std::string> value_names(IParam& node) const {
        std::vector<std::string> all = listed(node.EnumValues());
        CQZVariant mark;
        if (differs.marks_nodes && node.GetValue("@", &mark) != 0 && mark.vt == QZVT_EMPTY)
            all.erase(std::remove(all.begin(), all.end(), "@"), all.end());
        return all;
    }
    std::string outline() const { return outline_of(*root, differs.ordered); }

    Backend backend;
    CQZRef<IParam> root = backend.root();
};

using Names = std::vector<std::string>;

TYPED_TEST_SUITE_P(ParamContract);

TYPED_TEST_P(ParamContract, GivesBackValuesOfEveryType) {
    CountingObject object;
    const CQZRef<IParam> node = CQZRef<IParam>::Adopt(this->root->CreateSubParam("types"));
    for (const CQZVariant& sample : one_of_each(object)) {
        SCOPED_TRACE("type " + std::to_string(sample.vt));
        if (this->differs.lost_types[sample.vt]) continue;
        node->SetValue("value", &sample);
        CQZVariant read(1);
        ASSERT_EQ(node->GetValue("value", &read), 1);
        EXPECT_EQ(describe(read), describe(sample));
    }
    EXPECT_EQ(this->value_names(*node), Names{"value"});
    node->DeleteValue("value"); // lets go of the object
}

TYPED_TEST_P(ParamContract, CopiesValuesInAndOut) {
    CQZVariant value("first");
    this->root->SetValue("v", &value);
    value.pszVal[0] = '?';
    CQZVariant one, two;
    this->root->GetValue("v", &one);
    one.pszVal[0] = '!';
    this->root->GetValue("v", &two);
    EXPECT_STREQ(two.pszVal, "first");

    constexpr char kName[] = "a name that is on the heap";
    set_int(*this->root, kName, 5);
    CQZVariant name_and_value(kName);
    EXPECT_EQ(this->root->GetValue(name_and_value.pszVal, &name_and_value), 1);
    EXPECT_TRUE(name_and_value == CQZVariant(5));
}

TYPED_TEST_P(ParamContract, AnswersZeroForAMissingValue) {
    for (const char* const name : {"none", "a\\none", "a\\b\\none", "s\\none"}) {
        SCOPED_TRACE(name);
        CQZRef<IParam>::Adopt(this->root->CreateSubParam("s"));
        CQZVariant out(7);
        EXPECT_EQ(this->root->GetValue(name, &out), 0);
        if (this->differs.miss_leaves_out_alone) {
            EXPECT_TRUE(out == CQZVariant(7));
        }
    }
    EXPECT_EQ(this->outline(), "s{}");
}

TYPED_TEST_P(ParamContract, FindsNamesWithoutRegardToCase) {
    set_int(*this->root, "Size", 1);
    set_int(*this->root, "SIZE", 2);
    EXPECT_EQ(get_int(*this->root, "size"), 2);
    CQZRef<IParam>::Adopt(this->root->CreateSubParam("Window"));
    EXPECT_TRUE(CQZRef<IParam>::Adopt(this->root->OpenSubParam("wINDOW", 0)));
    EXPECT_EQ(this->outline(), "Size=2 Window{}");
}

TYPED_TEST_P(ParamContract, KeepsTheDefaultValueUnderAt) {
    if (!this->differs.default_value_is_at) return;
    const char* const names[] = {nullptr, "", "@"};
    for (int stored = 0; stored < 3; ++stored) {
        for (const char* const read : names) {
            SCOPED_TRACE(std::to_string(stored) + " read as " + (read != nullptr ? read : "null"));
            set_int(*this->root, names[stored], stored);
            EXPECT_EQ(get_int(*this->root, read), stored);
        }
        EXPECT_EQ(this->value_names(*this->root), Names{"@"});
        this->root->DeleteValue(names[2 - stored]);
        EXPECT_EQ(this->value_names(*this->root), Names{});
    }
}

TYPED_TEST_P(ParamContract, FollowsPaths) {
    struct Row {
        const char* steps;
        const char* expected;
        enum { kPlain, kMakesNodes, kMakesLast, kDropsNode } missing = kPlain; // what it shows of first nodes
    };
    const Row rows[] = {
        {"create a\\b", "a{b{}}", Row::kMakesNodes},
        {"create a\\b; create a\\c", "a{b{} c{}}", Row::kMakesNodes},
        {"create a; set a\\v", "a{v=2}"},
        {"create a\\b\\c; set a\\b\\c\\v", "a{b{c{v=2}}}", Row::kMakesNodes},
        {"set a\\v", "a{v=1}"},
        {"open a\\b", ""},
        {"make a; make a\\b", "a{b{}}", Row::kMakesLast},
        {"make a\\b", "b{}", Row::kDropsNode},
        {"set a\\b\\v", "b{v=1}", Row::kDropsNode},
        {"create a; set a\\b\\v", "a{b{v=2}}", Row::kDropsNode},
        {"make a\\b\\c", "b{c{}}", Row::kDropsNode},
        {"set a\\b\\c\\v", "b{c{v=1}}", Row::kDropsNode},
        {"create a; make a\\b\\c", "a{c{}}", Row::kDropsNode},
    };
    for (const Row& row : rows) {
        if (row.missing == Row::kDropsNode && !this->differs.drops_missing_node) continue;
        if (row.missing == Row::kMakesLast && !this->differs.makes_last_node) continue;
        if (row.missing == Row::kMakesNodes && !this->differs.makes_missing_nodes) continue;
        if (!this->differs.value_paths && std::string(row.steps).find("set") != std::string::npos) continue;
        this->root->Clear();
        for (const CQZRef<IParam>& node : children_of(*this->root))
            node->Clear(); // where the root's Clear leaves them behind
        for (const char* const name : {"a", "b", "c"})
            this->root->DeleteSubParam(name);
        SCOPED_TRACE(row.steps);
        run_steps(*this->root, row.steps);
        EXPECT_EQ(this->outline(), row.expected);
    }
}

TYPED_TEST_P(ParamContract, TakesNoPathForDeleting) {
    run_steps(*this->root, "create a; create a\\b; put a\\v");
    this->root->DeleteSubParam("a\\none");
    this->root->DeleteValue("a\\none");
    this->root->DeleteValue("a\\v");
    EXPECT_EQ(this->outline(), "a{v=3 b{}}");
    this->root->DeleteSubParam("a\\b");
    EXPECT_EQ(this->outline(), this->differs.deletes_by_path ? "a{v=3}" : "a{v=3 b{}}");
}

TYPED_TEST_P(ParamContract, DeletesOneOrAll) {
    const char* const made = "set v; set w; create a; put a\\x; create b";
    const auto gone = [this](const char* when_gone, const char* when_left) {
        return this->differs.deleted_child_is_gone ? when_gone : when_left;
    };
    run_steps(*this->root, made);
    this->root->DeleteValue("V");
    this->root->DeleteValue("none");
    this->root->DeleteSubParam("none");
    EXPECT_EQ(this->outline(), "w=2 a{x=4} b{}");
    this->root->DeleteSubParam("A");
    EXPECT_EQ(this->outline(), gone("w=2 b{}", "w=2 a{} b{}"));
    this->root->DeleteAllSubParams();
    EXPECT_EQ(this->outline(), gone("w=2", "w=2 a{} b{}"));
    this->root->DeleteAllValues();
    EXPECT_EQ(this->value_names(*this->root), Names{});
}

TYPED_TEST_P(ParamContract, ClearLeavesNothingToRead) {
    run_steps(*this->root, "set v; create a; put a\\x");
    this->root->Clear();
    EXPECT_EQ(this->value_names(*this->root), Names{});
    EXPECT_EQ(this->outline(), this->differs.clear_keeps_children ? "a{}" : "");
}

TYPED_TEST_P(ParamContract, CreatingAnExistingChildEmptiesIt) {
    run_steps(*this->root, "create a; put a\\v; create a\\b; create a");
    const char* const emptied = this->differs.clear_keeps_children ? "a{b{}}" : "a{}";
    EXPECT_EQ(this->outline(), this->differs.create_empties ? emptied : "a{v=2 b{}}");
}

TYPED_TEST_P(ParamContract, ListsNamesInOrder) {
    for (const char* const name : {"delta", "alpha", "charlie", "bravo"}) {
        set_int(*this->root, name, 1);
        if (this->differs.names_apart) CQZRef<IParam>::Adopt(this->root->CreateSubParam(name));
    }
    set_int(*this->root, "ALPHA", 2); // replacing does not move
    Names expected = {"delta", "alpha", "charlie", "bravo"};
    if (!this->differs.ordered) std::sort(expected.begin(), expected.end());
    EXPECT_EQ(this->value_names(*this->root), expected);
    if (!this->differs.names_apart) {
        this->root->DeleteAllValues();
        for (const char* const name : {"delta", "alpha", "charlie", "bravo"})
            CQZRef<IParam>::Adopt(this->root->CreateSubParam(name));
    }
    EXPECT_EQ(this->listed(this->root->EnumSubParams()), expected);
}

TYPED_TEST_P(ParamContract, EnumeratorsKeepTheirNamesAndGoOn) {
    for (const char* const name : {"a", "b", "c"})
        set_int(*this->root, name, 1);
    this->root->DeleteValue("@"); // a mark
    using Names_ = CQZRef<CTEnum<const char*>>;
    const Names_ one = Names_::Adopt(this->root->EnumValues());
    const Names_ two = Names_::Adopt(this->root->EnumValues());
    const char* name = nullptr;
    const char* other = nullptr;
    ASSERT_EQ(one->Next(1, &name, nullptr), 1);
    ASSERT_EQ(two->Next(1, &other, nullptr), 1);
    const std::string first = name;
    EXPECT_EQ(first, other);
    this->root->DeleteValue(name);
    EXPECT_EQ(first, name);
    unsigned fetched = 9;
    const char* rest[3] = {};
    EXPECT_EQ(one->Next(3, rest, &fetched), 1);
    EXPECT_EQ(fetched, 2u);
    EXPECT_EQ(one->Next(1, rest, &fetched), 0);
    EXPECT_EQ(fetched, 0u);
    EXPECT_EQ(two->Next(0, rest, nullptr), 0);
    EXPECT_EQ(two->Next(-1, rest, nullptr), 0);
    EXPECT_EQ(two->Next(1, nullptr, nullptr), 0);
    EXPECT_EQ(two->Skip(1), 1);
    EXPECT_EQ(two->Next(1, rest, nullptr), 1);
    EXPECT_EQ(two->Skip(0xFFFFFFFF), 1);
    EXPECT_EQ(two->Next(1, rest, nullptr), 0);
    two->Reset();
    EXPECT_EQ(two->Skip(1), 1);
    EXPECT_EQ(two->Next(1, rest, nullptr), 1);
}

TYPED_TEST_P(ParamContract, NodesOutliveWhatTheyWereReachedThrough) {
    CQZRef<IParam> a = CQZRef<IParam>::Adopt(this->root->CreateSubParam("a"));
    const CQZRef<IParam> b = CQZRef<IParam>::Adopt(a->CreateSubParam("b"));
    set_int(*b, "v", 5);
    a.Reset();
    EXPECT_EQ(get_int(*b, "v"), 5);
    if (!this->differs.holder_keeps_empty_node) return;
    this->root->DeleteSubParam("a");
    EXPECT_EQ(get_int(*b, "v"), 5); // only a was emptied; b is on its own now
    set_int(*b, "w", 6);
    EXPECT_EQ(outline_of(*b), "v=5 w=6");
}

REGISTER_TYPED_TEST_SUITE_P(ParamContract, GivesBackValuesOfEveryType, CopiesValuesInAndOut,
                            AnswersZeroForAMissingValue, FindsNamesWithoutRegardToCase,
                            KeepsTheDefaultValueUnderAt, FollowsPaths, TakesNoPathForDeleting,
                            DeletesOneOrAll, ClearLeavesNothingToRead, CreatingAnExistingChildEmptiesIt,
                            ListsNamesInOrder, EnumeratorsKeepTheirNamesAndGoOn,
                            NodesOutliveWhatTheyWereReachedThrough);
