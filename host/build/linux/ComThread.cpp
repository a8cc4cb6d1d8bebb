#include "build/ComThread.h"

namespace qel::host
{

// libqelcom needs no preparation.
ComThread::ComThread() = default;
ComThread::~ComThread() = default;

} // namespace qel::host
