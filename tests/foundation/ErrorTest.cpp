#include "foundation/Error.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ErrorTest, TheSystemsOwnDomainHasItsFixedName)
{
    EXPECT_EQ(ErrorDomain::SyncBase, u"com.ostrova.Quillpost.SyncBaseErrorDomain"_s);
    EXPECT_NE(ErrorDomain::Platform, ErrorDomain::SyncBase);
}

TEST(ErrorTest, ErrorsAreEqualWhenDomainCodeAndWordsAre)
{
    const Error error{ErrorDomain::SyncBase, 1, u"words"_s};
    EXPECT_EQ(error, (Error{ErrorDomain::SyncBase, 1, u"words"_s}));
    EXPECT_NE(error, (Error{ErrorDomain::Platform, 1, u"words"_s}));
    EXPECT_NE(error, (Error{ErrorDomain::SyncBase, 2, u"words"_s}));
    EXPECT_NE(error, (Error{ErrorDomain::SyncBase, 1, u"other words"_s}));
}
