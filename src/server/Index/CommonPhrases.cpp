#include "server/Index/CommonPhrases.h"

#include "server/Index/WordList.h"
#include "support/Text/Text.h"

#include <algorithm>

namespace quillstead::server::CommonPhrases {

namespace {

constexpr std::string_view chineseStops =
    "一下 一个 一些 不 不是 与 为什么 也 了 了吗 什么 什麼 从 他 他们 们 但是 你 你们 你好 再 又 "
    "可以 可以吗 吗 吧 告诉 呢 和 哪个 哪些 哪里 啊 因为 在 "
    "多少 她 好的 如何 如果 它 对 对吗 就 就是 帮忙 帮我 应该 很 怎么 怎样 怎麼 想要 我 我们 我們 "
    "所以 把 是 是否 是的 没有 為什麼 然后 现在 的 的话 着 繼續 "
    "给我 继续 能不能 能否 被 要 請 請問 謝謝 让 请 请问 谢谢 还 还是 这 这个 这些 这段 这里 這個 "
    "那 那个 那些 那個 那段 那里 都 需要";

constexpr std::string_view chineseCommon =
    "代码 修复 修改 做 内容 写 函式 函数 创建 删除 功能 打开 提交 改 文件 方法 显示 更新 查看 检查 "
    "檔案 测试 添加 測試 看 程式 解释 运行 錯誤 错误 问题 项目";

constexpr std::string_view japaneseStops =
    "あの あり ありがとう ある あれ いいえ いくつ いた いつ いま いる おしえて おねがい "
    "お願いします お願い致します か から が ください ここ こと この これ こんにちは "
    "ございます した して しました します しません すべき する そこ その それ ために ための だった "
    "だれ って ていた ている てください てる で である できない できます "
    "できる でした です では ではなく でも と という とか ところ として とは どう どうして "
    "どうすれば どうやって どこ どの どのように どれ ない なかった なぜ なった "
    "など なに なる に について によって に関して ね の のか のが のに のは のを は はい へ ました "
    "ます ません まで も もう一回 もう一度 もの や よ より られ "
    "れる わ を 下さい 今 何か 何が 何の 何を 何故 教えて 次へ 的 続き 続けて 誰が";

constexpr std::string_view japaneseCommon =
    "エラー コミット コード テスト バグ ファイル プッシュ 作成 修正 削除 問題 変え 変更 実行 方法 "
    "書いて 直して 確認 行 表示 見せて 説明 読んで 追加 開いて 関数";

constexpr std::string_view koreanStops =
    "감사 거기 것은 것을 것이 계속 그것 그래서 그러나 그런데 그리고 까지 나는 나요 네 누가 누구 "
    "는데 다시 대한 대해 되나요 됩니까 됩니다 드려 드립 때문 라고 라는 "
    "무슨 무엇 부탁 부터 습니까 습니다 안녕 어디 어떤 어떻게 언제 없는 없습 없어 에게 에는 에도 "
    "에서 여기 예요 우리 위한 위해 으로 응 이것 이라 이에요 이제 "
    "인가요 입니까 입니다 있나 있는 있습 있어 저것 저는 좋아 주세요 지금 지만 진행 하고 하기 "
    "하나요 하는 하면 하세요 하지만 합니까 합니다 해 해서 해주세요 해줘 "
    "했습니다 했어요";

constexpr std::string_view koreanCommon =
    "고쳐 문제 방법 버그 변경 보여 삭제 설명 수정 실행 에러 열어 오류 읽어 작성 추가 커밋 코드 "
    "테스트 파일 표시 푸시 함수 확인";

constexpr std::string_view alphabetStops =
    "กรุณา กับ กี่ ก็ ของ ขอบคุณ ครับ ควร คะ คือ คุณ ค่ะ จะ จาก ฉัน ช่วย ซึ่ง ด้วย ตกลง ต่อ ต่อไป "
    "ต้อง ถ้า ทำต่อ ทำไม ที่ ที่ไหน นะ นั้น นี้ ผม มี ยังไง ลอง ว่า สวัสดี สำหรับ หน่อย หรือ หาก "
    "อยู่ อย่างไร อะไร อีกครั้ง เขา เท่าไร เท่าไหร่ เป็น เพราะ เพื่อ เมื่อไร เมื่อไหร่ เรา "
    "เหล่านี้ แต่ และ แล้ว โดย โอเค ใคร ใช่ ใน ให้ ได้ ได้ไหม ไม่ ไม่ใช่ ไหม ກະລຸນາ ຂອງ ຂອບໃຈ "
    "ສືບຕໍ່ ຫຍັງ ແມ່ນ ແລະ ကျေးဇူး ဆက် ပါ ဘာ និង បន្ត របស់ សូម អរគុណ អ្វី";

constexpr std::string_view alphabetCommon =
    "ข้อผิดพลาด ตรวจสอบ ทดสอบ บั๊ก ปัญหา ฟังก์ชัน รัน ลบ วิธี สร้าง อธิบาย อ่าน เขียน เทสต์ "
    "เปลี่ยน เปิด เพิ่ม แก้ แก้ไข แสดง โค้ด ไฟล์";

/// Longer phrases are not in the lists.
constexpr std::size_t longestPhrase = 6;

bool saysNothing(std::string_view phrase) {
  return WordList<chineseStops>::contains(phrase) || WordList<japaneseStops>::contains(phrase) ||
         WordList<koreanStops>::contains(phrase) || WordList<alphabetStops>::contains(phrase);
}

bool saysLittle(std::string_view phrase) {
  return WordList<chineseCommon>::contains(phrase) || WordList<japaneseCommon>::contains(phrase) ||
         WordList<koreanCommon>::contains(phrase) || WordList<alphabetCommon>::contains(phrase);
}

}  // namespace

std::vector<Saying> sayings(std::string_view run) {
  std::vector<Saying> all(run.size(), Saying::something);
  for (std::size_t begin = 0; begin < run.size();) {
    std::size_t end = begin;
    for (std::size_t length = 0; length < longestPhrase && end < run.size(); ++length) {
      end += Text::decodeFirst(run.substr(end)).length;
      const std::string_view phrase = run.substr(begin, end - begin);
      const bool nothing = saysNothing(phrase);
      if (!nothing && !saysLittle(phrase)) continue;
      const Saying saying = nothing ? Saying::nothing : Saying::little;
      for (std::size_t at = begin; at < end; ++at) all[at] = std::min(all[at], saying);
    }
    begin += Text::decodeFirst(run.substr(begin)).length;
  }
  return all;
}

}  // namespace quillstead::server::CommonPhrases

namespace quillstead::server::KoreanParticles {

namespace {

/// Others, such as "이" and "의", also end many nouns of two syllables.
constexpr std::string_view particles = "는 를 만 에 은 을";

constexpr std::string_view nounsThatEndAlike = "가을 고을 그만 낭만 노을 마을 불만 오만 자만 지은";

}  // namespace

std::string_view stemOf(std::string_view word) {
  const std::string_view first = word.substr(0, Text::decodeFirst(word).length);
  const std::string_view second = word.substr(first.size());
  const bool isParticle = WordList<particles>::contains(second);
  return isParticle && !WordList<nounsThatEndAlike>::contains(word) ? first : std::string_view();
}

}  // namespace quillstead::server::KoreanParticles
