// Search, dumps, random numbers and persistent objects.
#include <vel.h>

#include <iostream>
#include <random>
#include <sstream>

namespace {

void find(const VelClStringMatchABase& search) {
  const char* const found = search.getPattern("one.two");
  std::cout << (found != nullptr ? found : "(not found)") << '\n';
}

void show(const VelClStringRepresentationABase& line) {
  std::cout << line.getAsCString() << '\n';
}

/// Writes an object and reads it back into another one.
void copy(const VelClPersistencyABase& from, VelClPersistencyABase& to) {
  std::stringstream stream(std::ios::in | std::ios::out | std::ios::binary);
  from.write(stream);
  to.read(stream);
}

}  // namespace

int main() {
  find(VelClStringSearch("TWO", true));
  find(VelClStringMatchWildcards("ONE.*", false));
  // A placeholder: regular expressions are left to <regex>.
  find(VelClGrep("one", false));

  show(VelClStrepHexDump("ABC", 3));
  show(VelClStrepBinDump("AB", 2));
  std::cout << VelClStrepAddress(nullptr).getAsCString() << '\n';

  const VelClRandomNumberGenerator numbers(4711);
  VelClRandomBitGenerator bits(numbers);
  const int dots = std::uniform_int_distribution<int>(1, 6)(bits);
  std::cout << "dice: " << (dots >= 1 && dots <= 6) << '\n';

  VelClBitArray bitsOfToday(20), bitsOfTomorrow(20);
  bitsOfToday.set(7);
  copy(bitsOfToday, bitsOfTomorrow);
  std::cout << bitsOfTomorrow.getNumOfSetBits() << " bit is set\n";
}
