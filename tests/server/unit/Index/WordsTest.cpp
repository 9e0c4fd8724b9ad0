#include "server/Index/Ranking.h"
#include "server/Index/Words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

namespace {

/// The terms of a prompt with what they say, as "word:1 other:0.5".
std::string termsOf(std::string_view prompt) {
  std::string all;
  for (const Words::SearchTerm& term : Words::searchTerms(prompt)) {
    std::string says = std::to_string(term.says);
    says.erase(says.find_last_not_of('0') + 1);
    if (says.back() == '.') says.pop_back();
    all += (all.empty() ? "" : " ") + term.word + (term.isBeginning ? "*" : "") + ":" + says;
  }
  return all;
}

struct Case {
  std::string_view text;
  std::string_view words;
};

TEST(Words, AreThoseThatTellCardsApart) {
  for (const Case& one : {
           Case{"How do we deploy to Staging?", "deploy:1 staging:1"},
           {"the and of to please can you", ""},
           {"don't we'll I'm it's", ""},
           {"deploy DEPLOY Deploy", "deploy:1"},
           {"a b c 1 2 x9", "x9:1"},
           {"GRÖSSE naïve", "grösse:1 naïve:1"},
           {"\"quoted\" AND (x:y) NEAR*", "quoted:1 near:1"},
           {"many\xFF"
            "bytes",
            "bytes:1"},
           {"", ""},
       }) {
    EXPECT_EQ(termsOf(one.text), one.words) << one.text;
  }
}

TEST(Words, SayLittleWhenTheyAreInEveryPrompt) {
  EXPECT_EQ(termsOf("fix the tests in the parser"), "fix:0.5 tests:0.5 parser:1");
  EXPECT_EQ(termsOf("zeig mir die Datei"), "zeig:0.5 datei:0.5");
}

TEST(Words, OfNamesAreFoundWholeAndByTheirParts) {
  for (const Case& one : {
           Case{"fetchWithRetry", "fetchwithretry:1 fetch:0.5 retry:0.5"},
           {"fetch_with_retry", "fetchwithretry:1 fetch:0.5 retry:0.5"},
           {"HTTPServer", "httpserver:1 http:0.5 server:0.5"},
           {"URLs", "urls:1"},
           {"parseURLs", "parseurls:1 parse:0.5 urls:0.5"},
           {"sha256Sum", "sha256sum:1 sha256:0.5 sum:0.5"},
           {"read-only replica", "readonly:1 read:0.5 replica:1"},
           {"python 3.12 and 1.2.3", "python:1 3.12:1 12:1 1.2.3:1"},
           {"end. Start", "end:0.5 start:0.5"},
           {"kafka - zookeeper --flag _x_ a__bc", "kafka:1 zookeeper:1 flag:1 bc:1"},
           {"kafka-kafka_topic", "kafkakafkatopic:1 kafka:0.5 topic:0.5"},
           {"kafka_topic kafka", "kafkatopic:1 kafka:1 topic:0.5"},
       }) {
    EXPECT_EQ(termsOf(one.text), one.words) << one.text;
  }
  const std::string longChain = "kafka" + std::string(60, '-') + "x";
  EXPECT_EQ(termsOf(longChain), "kafka:1");
  std::string manyWords = "kafka";
  for (int count = 0; count < 30; ++count) manyWords += "_kafka";
  EXPECT_EQ(termsOf(manyWords), "kafka:0.5");
}

TEST(Words, OfScriptsWithoutSpacesAreTwoNeighbours) {
  for (const Case& one : {
           Case{"数据库备份", "数据:1 据库:1 库备:1 备份:1"},
           {"猫 and 犬猫", "猫*:0.5 犬猫:1"},
           {"東京tower2", "東京:1 tower2:1"},
           {"サーバー・名前", "サー:0.5 ーバ:0.5 バー:0.5 名前:1"},
           {"カタログの森", "カタ:0.5 タロ:0.5 ログ:0.5 グの:0.25 の森:0.25"},
           {"백업서버", "백업:1 업서:1 서버:1"},
           {"짐만 마을 방은요", "짐*:0.5 마을:1 방은:1 은요:1"},
           {"บัญชี", "บั:0.25 ัญ:0.25 ญช:0.25 ชี:0.25"},
           {"ＡＰＩ２", "api2:1"},
           {"हिन्दी", "हिन्दी:1"},
       }) {
    EXPECT_EQ(termsOf(one.text), one.words) << one.text;
  }
}

TEST(Words, OfScriptsWithoutSpacesMaySayNothing) {
  for (const std::string_view prompt :
       {"请问", "お願いします", "続けてください", "계속", "ขอบคุณครับ"}) {
    EXPECT_EQ(termsOf(prompt), "") << prompt;
  }
  EXPECT_EQ(termsOf("测试"), "测试:0.5");
  EXPECT_EQ(termsOf("코드"), "코드:0.5");
}

TEST(Words, AreStopWordsInTheLanguageOfThePromptOnly) {
  EXPECT_EQ(termsOf("weiter"), "");
  EXPECT_EQ(termsOf("why does the process die"), "process:1 die:1");
  EXPECT_EQ(termsOf("wann läuft die Sicherung"), "läuft:1 sicherung:1");
  EXPECT_EQ(termsOf("où est la sauvegarde"), "sauvegarde:1");
  EXPECT_EQ(termsOf("continue s'il te plaît"), "");
  EXPECT_EQ(termsOf("продолжай, пожалуйста"), "");
}

TEST(Words, DoNotDependOnCharactersThatAreNotSeen) {
  EXPECT_EQ(termsOf("stag\u00ADing \uFEFFde\u200Bploy"), "staging:1 deploy:1");
}

TEST(Words, AreLoweredLetterByLetter) {
  for (const Case& one : {
           Case{"AZ@[az`{09_", "az@[az`{09_"},
           {"ÉCOLE", "école"},
           {"ABCÉDEF", "abcédef"},
           {"ЖУК", "жук"},
           {"東京", "東京"},
           {"A\xC3", "a "},
           {"", ""},
       }) {
    EXPECT_EQ(Words::lowered(one.text), one.words) << one.text;
  }
}

TEST(Words, AreIndexedWithTheirParts) {
  for (const Case& one : {
           Case{"run fetchWithRetry", "run fetchWithRetry fetch With Retry "},
           {"a_b-c", "abc a b c "},
           {"東京 é", "東京 京 é "},
           {"東", "東 "},
           {"v1.2", "v1.2 v1 2 "},
           {"1.2", "1.2 1 2 "},
           {"", ""},
           {"… – !", ""},
       }) {
    EXPECT_EQ(Words::indexed(one.text), one.words) << one.text;
  }
}

}  // namespace

}  // namespace quillstead::server
