// expected: no type named 'jthread' in namespace 'std'
#include <thread>

void wait(std::jthread thread);
