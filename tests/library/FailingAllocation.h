// Lets one allocation of this program, and of the libraries that it uses, fail.
#pragma once

// The allocation after the next `count` ones fails; none does for a negative count.
void FailAllocationAfter(int count);
