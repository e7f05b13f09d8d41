#include <jex/core_imports.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <set>
#include <string>

using testing::HasSubstr;
using testing::Not;

namespace {

template <class... A>
std::string message(jex_int number, A... arguments) {
  char text[600];
  memset(text, '#', sizeof text);
  const jex_int length =
      jex_serv_jex_get_msg(text, sizeof text, number, sizeof...(arguments), arguments...);
  EXPECT_EQ(size_t(length), strlen(text)) << number;
  return text;
}

// The same text as a caller who counts from 1 reads it, written apart from the catalogue's code.
std::string counted_from_1(std::string text) {
  for (size_t at; (at = text.find('[')) != std::string::npos;) {
    const size_t end = text.find(']', at);
    const std::string index = text.substr(at + 1, end - at - 1);
    std::string counted = isdigit(index[0]) ? std::to_string(std::stoi(index) + 1) : index + " + 1";
    text.replace(at, end - at + 1, std::string(1, '(').append(counted).append(1, ')'));
  }
  return text;
}

std::string unknown(jex_int number) {
  return "jex: there is no message " + std::to_string(number) + ".";
}

TEST(Messages, EveryNumberHasAText) {
  for (int number : {0, 396, 397, 398, 407, 408, 409}) {
    EXPECT_NE(message(number, "x"), unknown(number));
    EXPECT_GT(message(number, "x").size(), 4u) << number;
  }
  for (int number = 410; number <= 487; ++number) {
    EXPECT_NE(message(number, "x"), unknown(number));
    EXPECT_GT(message(number, "x").size(), 4u) << number;
    EXPECT_THAT(message(number, "x"), Not(HasSubstr("\n"))) << number;
  }
}

TEST(Messages, BothSetsSayTheSame) {
  for (int number = 449; number <= 487; ++number) {
    EXPECT_EQ(message(number - 39, "x"), counted_from_1(message(number, "x")));
    EXPECT_THAT(message(number - 39, "x"), Not(HasSubstr("["))) << number - 39;
    EXPECT_THAT(message(number, "x"), Not(HasSubstr("ipar("))) << number;
  }
  EXPECT_THAT(message(449, "-7"), HasSubstr("ipar[6] = -7"));
  EXPECT_THAT(message(410, "-7"), HasSubstr("ipar(7) = -7"));
  EXPECT_THAT(message(475, "0.5"), HasSubstr("f[n] = 0.5"));
  EXPECT_THAT(message(436, "0.5"), HasSubstr("f(n + 1) = 0.5"));
}

// The lines that show a value, and no others, take one argument.
TEST(Messages, ValuesStandWhereTheyBelong) {
  const std::set<int> with_value = {449, 451, 453, 461, 465, 467, 471, 472, 473,
                                    475, 476, 478, 479, 481, 483, 484, 485, 487};
  for (int number = 449; number <= 487; ++number)
    for (int set : {number, number - 39}) {
      const std::string text = message(set, "<value>", "<surplus>");
      EXPECT_EQ(text.find("<value>") != std::string::npos, with_value.count(number) == 1) << set;
      EXPECT_THAT(text, Not(HasSubstr("<surplus>"))) << set;
      EXPECT_THAT(text, Not(HasSubstr("%s"))) << set;
    }
  EXPECT_THAT(message(408, "a log.txt"), HasSubstr("log file a log.txt cannot"));
}

TEST(Messages, MissingAndNullArguments) {
  EXPECT_EQ(message(408), message(408, "?"));
  EXPECT_EQ(message(408, static_cast<const char*>(nullptr)), message(408, "?"));
  char text[80];
  jex_serv_jex_get_msg(text, sizeof text, 408, -1);
  EXPECT_EQ(text, message(408, "?"));
  EXPECT_THAT(message(487, "50 %s, 100 %d [3]"), HasSubstr("50 %s, 100 %d [3]"))
      << "an argument is text, not a format";
  EXPECT_THAT(message(448, "word [3]"), HasSubstr("word [3]"));
}

TEST(Messages, UnknownNumbersAreNamed) {
  for (int number : {-2147483647 - 1, -1, 1, 395, 399, 406, 488, 2147483647})
    EXPECT_EQ(message(number), unknown(number));
}

TEST(Messages, CutToTheRoomGiven) {
  for (int number : {397, 408, 436, 12345}) {
    const std::string whole = message(number, "value");
    for (jex_int size = -1; size <= jex_int(whole.size()) + 2; ++size) {
      char text[200];
      memset(text, '#', sizeof text);
      EXPECT_EQ(jex_serv_jex_get_msg(text, size, number, 1, "value"), jex_int(whole.size()));
      const size_t kept = size < 1 ? 0 : std::min(whole.size(), size_t(size - 1));
      std::string expected = whole.substr(0, kept);
      if (size >= 1) expected += '\0';
      EXPECT_EQ(std::string(text, expected.size()), expected) << number << " in " << size;
      EXPECT_EQ(text[expected.size()], '#') << number << " in " << size;
    }
    EXPECT_EQ(jex_serv_jex_get_msg(nullptr, 0, number, 1, "value"), jex_int(whole.size()));
  }
}

TEST(Messages, PrintedWithANewline) {
  const std::string name(5000, 'n');
  testing::internal::CaptureStdout();
  jex_serv_jex_print(0, 0);
  jex_serv_jex_print(408, 1, name.c_str());
  jex_serv_jex_print(437, 1, "1e-12");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), message(0) + "\nThe log file " + name +
                                                        " cannot be opened,\n" +
                                                        message(437, "1e-12") + "\n");
}

}  // namespace
