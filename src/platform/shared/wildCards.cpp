#include "platform/shared/wildCards.h"

namespace qel
{

Text LoweredPattern(TextView myPattern)
{
    return myPattern == u"*.*" ? Text(u"*") : LowerCase(myPattern);
}

bool MatchesPattern(TextView myLoweredName, TextView myLoweredPattern)
{
    size_t myStar = TextView::npos; // the last "*" of the pattern
    size_t myRetry = 0;             // where in the name its match ends in this attempt
    size_t myAt = 0;
    size_t i = 0;
    while (i < myLoweredName.size())
    {
        if (myAt < myLoweredPattern.size() && myLoweredPattern[myAt] == u'*')
        {
            myStar = myAt++;
            myRetry = i;
        }
        else if (myAt < myLoweredPattern.size() &&
                 (myLoweredPattern[myAt] == u'?' || myLoweredPattern[myAt] == myLoweredName[i]))
        {
            ++myAt;
            ++i;
        }
        else if (myStar != TextView::npos)
        {
            myAt = myStar + 1;
            i = ++myRetry;
        }
        else
        {
            return false;
        }
    }
    return myLoweredPattern.find_first_not_of(u'*', myAt) == TextView::npos;
}

} // namespace qel
