#include "server/Index/StopWords.h"

#include "server/Index/WordList.h"

namespace quillstead::server::StopWords {

namespace {

constexpr std::string_view englishWords =
    "a able about above actually after again against ago ahead ain all almost already alright "
    "also although always am an and another any anybody anyone anything anyway anyways are aren "
    "around as ask asked asking at away back be became because been before behind being below "
    "between both but by bye came can cannot cant clearly come comes coming continue cool could "
    "couldn definitely did didn didnt do does doesn doesnt doing don done dont down during each "
    "eg either else enough etc even ever every everyone everything exactly feels few fine for "
    "from further gave get gets getting give given gives giving go goes going gone gonna good got "
    "great had hadn has hasn have haven having he hello help her here hers herself hey hi him "
    "himself his hmm how however i ie if im in indeed instead into is isn isnt it its itself ive "
    "just keep keeps kept kindly know known knows later least let lets lgtm like ll look looked "
    "looking looks made make makes making many may maybe me mean means meant might mine more most "
    "much must mustn my myself nah need needed needs neither never nice no nobody none nope nor "
    "not nothing now of off often ok okay on once one only onto or other others our ours "
    "ourselves out over own per perfect perhaps please pls plz proceed quickly quite rather re "
    "really right said same saw say says see seem seems seen several shall shan she should "
    "shouldn shown simply since so some somebody someone something sometimes soon sorry sounds "
    "still stuff such sure take taken takes taking tell than thank thanks that thats the their "
    "theirs them themselves then there theres these they thing things think this those though "
    "thought through thus thx to together told too toward towards tried tries try trying ty under "
    "unless until up upon us use used using usually ve very via wanna want wanted wants was wasn "
    "way we well went were weren what whatever whats when where whether which while who whoever "
    "whole whom whose why will with within without won wont would wouldn yeah yep yes yet you "
    "your youre yours yourself yourselves";

constexpr std::string_view germanWords =
    "aber alle allem allen aller alles als also am an ander andere anderen anderer anderes auch "
    "auf aus bei beim bereits bevor bin bis bist bitte da dabei dafür daher damit danach danke "
    "dann daran darauf daraus darf darin darum darüber das dass davon davor dazu dein deine "
    "deinem deinen deiner dem den denn der deren des deshalb dessen die dies diese diesem diesen "
    "dieser dieses dir doch dort du durch ebenso ein eine einem einen einer eines einfach einige "
    "einmal er erst es etwa etwas euch euer eure für ganz gar gegen genau gerade gern gerne "
    "gewesen gib gibt gut habe haben hallo hast hat hatte hatten hier hin hinter ich ihm ihn "
    "ihnen ihr ihre ihrem ihren ihrer im immer in ins ist ja jede jedem jeden jeder jedes jedoch "
    "jene jetzt kann kannst kein keine keinem keinen keiner können könnte könntest lass los mach "
    "mache machen macht mal man mehr mein meine meinem meinen meiner mich mir mit mittels muss "
    "musst müssen nach nachdem natürlich neben nein nicht nichts noch nun nur ob oder ohne okay "
    "schon sehr sei sein seine seinem seinen seiner seit sich sie sind so sobald sofern sogar "
    "soll sollen sollst sollte sondern sonst soweit statt tu tun tut um und uns unser unsere "
    "unserem unseren unter viel viele vielen vielleicht vom von vor wann war waren warst warum was "
    "wegen weil weiter weitere weiteren welche welchem welchen welcher welches wenn wer werde "
    "werden wessen wie wieder wieso will willst wir wird wirklich wirst wo wobei woher wohin "
    "wollen womit wurde wurden während wäre würde würden zu zum zur zwar zwischen über";

constexpr std::string_view frenchWords =
    "accord ai aie alors après as au aucun aucune aussi autre autres aux avait avant avec avez "
    "avoir avons bien bonjour car ce ceci cela celle celles celui ces cet cette ceux chaque chez "
    "ci comme comment continue continuez dans de depuis des doit donc dont du déjà elle elles en "
    "encore entre es est et eu faire fais fait faites faut grâce ici il ils je jour jusque juste "
    "la laquelle le lequel les lesquels leur leurs lors lorsque lui là ma mais me merci mes moi "
    "moins mon même mêmes ne ni non nos notre nous on ont ou oui où par parce pas pendant peu "
    "peut peux plaît plus plusieurs plutôt pour pourquoi pourrait pouvez pouvons puis puisque qu "
    "quand que quel quelle quelles quelque quelques quels qui quoi sa salut sans se sera serait "
    "ses si sinon soit sommes son sont sous suis sur ta te tel telle tes toi ton toujours tous "
    "tout toute toutes très tu un une va vais vas vers veux voici voilà vont vos votre voudrais "
    "vous vraiment vu y ça étaient était été être";

constexpr std::string_view spanishWords =
    "a acá ahora ahí al algo alguna algunas alguno algunos algún allí ambos ante antes aquel "
    "aquella aquí así aunque aún bajo bien cada casi como con continúa contra cual cuales "
    "cualquier cuando cuanto cuál cuándo cuánto cómo de debe debemos deben debo del desde después "
    "donde dos durante dónde e el ella ellas ellos en entonces entre era eran eres es esa esas "
    "ese eso esos esta estaba estamos estar estas este esto estos estoy está están esté favor fue "
    "fueron gracias ha hace hacer haces hacia han hasta hay haz he hecho hola iba igual incluso "
    "ir la las le les lo los luego me mi mientras mis misma mismo mucho muchos muy más mí nada ni "
    "ninguna ningún no nos nosotros nuestra nuestro o otra otras otro otros para pero poco "
    "podemos poder por porfa porque puede pueden puedes puedo pues que quien quiero quién qué se "
    "sea según ser si sido siempre sigue sin sino sobre solo somos son soy su sus sí sólo tal "
    "también tampoco tan tanto te tenemos tener tengo ti tiene tienen tienes toda todas todavía "
    "todo todos tu tú un una unas uno unos usted va vale vamos vez voy y ya yo él";

constexpr std::string_view italianWords =
    "a abbiamo ad adesso agli ai al alcuni all alla alle allo allora altra altre altri altro "
    "anche ancora avanti avere bene che chi ci ciao ciò come con continua cosa così cui da dal "
    "dalla dalle dallo degli dei del dell della delle dello deve devo di dopo dove e ed era erano "
    "essere fa fai fare fatto favore fino fra già gli grazie ha hai hanno ho i il in io l la le "
    "lei lo loro lui là ma me mentre mi mia mio molti molto ne nei nel nella nelle nessuno no noi "
    "non nostra nostro o oggi ogni oppure per perché perciò più poi posso prego prima proprio "
    "puoi può qual qualche quale quali quando quanto quel quella quelle quelli quello questa "
    "queste questi questo qui quindi sarà se sei senza si sia siamo solo sono sopra sotto sta "
    "stato su sua sue sugli sui sul sulla suo suoi sì tra tu tua tuo tutta tutti tutto un una uno "
    "va vai verso vi via voglio voi vorrei è";

constexpr std::string_view portugueseWords =
    "a agora ainda algo algum alguma alguns alguém ali além ambos ante antes ao aos apenas após "
    "aquela aquele aqui as assim até bem cada com como continue contra da das de dela dele depois "
    "desde dessa desse desta deste deve devo do dois dos durante e ela elas ele eles em enquanto "
    "entre então era eram essa essas esse esses esta estamos estar estas estava este estes estou "
    "está estão eu favor faz fazer faça foi for foram há isso isto já lhe logo lá mais mas me "
    "mesma mesmo meu meus minha muito muitos na nada nas nem nenhum nessa nesse nesta neste no "
    "nos nossa nosso num numa não nós o obrigada obrigado olá onde os ou outra outras outro "
    "outros para pela pelas pelo pelos pode podem podemos pois por porque porquê posso pouco pra "
    "quais qual qualquer quando quanto que quem quero quão quê se seja sem sempre sendo ser será "
    "seu seus si sim sob sobre somos sua suas são só tal também te tem temos tenho ter teu toda "
    "todas todo todos tu tua tudo tão têm um uma umas uns vai vamos você vocês vou à às é";

constexpr std::string_view dutchWords =
    "aan af al alle alleen alles als alsjeblieft alstublieft altijd andere bedankt ben beter bij "
    "binnen daar daarom dan dank dat de deze die dit doe doen door dus een eens eerst elk elke en "
    "er erg even ga gaan gaat geen goed graag had hallo hebben hebt heeft heel hem hen het hier "
    "hij hoe hun iemand iets ik in is ja je jij jou jouw jullie kan kun kunnen kunt maak maar "
    "maken meer met mij mijn misschien moet moeten na naar nee niet niets nog nou nu of om omdat "
    "ons onze ook op over te tegen toch toen tot tussen u uit uw van vanaf veel verder voor waar "
    "waarom wanneer want waren was wat we weer wel welke werd wie wij wil willen word worden "
    "wordt zal ze zeer zelf zich zij zijn zo zonder zou zouden";

constexpr std::string_view russianWords =
    "а без бы был была были было быть в вам вас ваш весь во вот все всего всех всю всё вы где да "
    "давай даже дальше для до его ее если есть еще ещё её же за здесь и из или им их к как какая "
    "какие какой какую когда кто куда ли лучше между меня мне можем может можешь можно мой моя мы "
    "на над надо нам нас наш не него нее нет неё ни них но ну нужно о об один он она они оно от "
    "очень перед по под пожалуйста пока после потом потому почему при привет про продолжай раз с "
    "сам свой сделай себя сейчас со спасибо так также такой там тебе тебя тем то тогда того тоже "
    "только том тот тут ты у уже хорошо хочу чем что чтобы эта эти это этого этой этом этому этот "
    "эту я";

constexpr std::string_view polishWords =
    "a aby albo ale bardzo bez bo by być był była było były chcę ci cię co czy czyli dalej dla "
    "dlaczego do dobrze dzięki dziękuję gdy gdzie go i ich ile im inne inny innych ja jak jaka "
    "jaki jakie jako je jego jej jest jestem jeszcze jeśli już kiedy kto która które którego "
    "której który których lub ma mam mamy mi mnie moje może można mu musi my mój na nad nam nas "
    "nasz nic nich nie niego nim niż no o od on ona one oni oraz po pod ponieważ potem proszę "
    "przed przez przy sam siebie się sobie swoje są ta tak także tam te tego tej ten teraz też to "
    "tu tutaj twój ty tych tylko tym u w we wiele więc wszystkie wszystko właśnie z za zawsze ze "
    "zrób że żeby";

constexpr std::string_view turkishWords =
    "ama ancak artık aslında az bana bazı belki ben beni benim bir biraz biri birçok biz bizim bu "
    "buna bunlar bunu bunun burada da daha de devam değil diye dolayı et etmek evet gibi göre "
    "hangi hatta hayır hem henüz hep hepsi her herkes hiç ile ise için kadar kendi ki kim lütfen "
    "mi mu mü mı nasıl ne neden nerede niçin o olan olarak oldu olduğu olmak olsa olur on ona "
    "onlar onu onun orada sadece sana sen seni senin siz sizin son sonra tamam teşekkürler tüm "
    "var ve veya ya yani yap yapmak yeni yine yok zaten çok çünkü öyle üzere şey şimdi şu";

constexpr std::string_view vietnameseWords =
    "anh bao bạn bằng bị cho chúng chỉ các cách cái còn có cùng cũng cảm cần của giờ gì hay hãy "
    "hơn khi không là làm lên lòng lại muốn mà mình mỗi một người nhiều nhé như nhưng những nào "
    "này nên nó nếu nữa phải qua ra rất rồi sao sau sẽ theo thêm thì thế tiếp trong trên tôi tại "
    "từ vui và vào vì vẫn vậy về với xin đang đi điều đây đã đó được đến đều để ơn ấy ở";

constexpr std::string_view hindiWords =
    "अगर अपना अपनी अपने अब आगे आप आपका इन इस इसका इसके इसमें इसे उन उनका उनके उस उसका उसके उसे एक "
    "और कब कर करके करना करने करें करो कहाँ का काम कि किया की कुछ कृपया के कैसे को कोई कौन क्या "
    "क्यों गए गया चाहिए जब जा जाए जाता जारी जी जो ठीक तक तब तो था थी थे दें दो धन्यवाद न नहीं ने "
    "पर फिर बहुत बाद बारे भी मुझे मे में मेरा मेरे मैं यदि यह यहाँ यहां या ये रखें रहा रही रहे "
    "लिए ले वह वहाँ वहां वाला वाली वाले वे वो सकता सकते सब साथ से हम हमारा हमारे हाँ हां ही हुआ "
    "हुई हुए है हैं हो होगा होता होती होते";

constexpr std::string_view arabicWords =
    "ألا أم أن أنا أنت أو أي أيضا أيضاً أين إذا إلا إلى إن استمر الآن التي الذي الذين بعد بعض بل "
    "بما بين تابع تم ثم جدا حتى حول حيث خلال دون ذلك شكرا شكراً عبر على عن عند عندما غير فضلك فقط "
    "في فيه فيها قبل قد كان كانت كل كم كما كيف لا لقد لكن لم لماذا لن له لها لو ليس ما ماذا متى "
    "مثل مع من منذ منه منها نحن نعم هؤلاء هذا هذه هل هم هنا هناك هو هي و وفي ولا وما ومن وهو وهي "
    "يا يتم يجب يكون يمكن";

constexpr std::string_view greekWords =
    "ένα ένας έτσι έχει έχουν έχω ή ήταν αλλά αν από αυτά αυτή αυτό αυτός αυτών για γιατί δεν "
    "είμαι είναι εγώ εδώ εκεί εκείνο εμείς ενώ επίσης εσύ ευχαριστώ η θέλω θα κάθε κάνε κάτι και "
    "κατά κι μία μα μας με μετά μη μην μια μου μπορεί μπορείς μπορώ μόνο να ναι ο οι παρά "
    "παρακαλώ ποια ποιο ποιος πολύ που πού πρέπει πριν προς πως πόσο πότε πώς σαν σας σε στα στη "
    "στην στις στο στον στους συνέχισε τα τη την της τι τις το τον του τους των ως όλα όλες όλοι "
    "όμως όπου όπως όταν ότι όχι";

constexpr std::string_view chinesePhrases =
    "一下 一个 一些 不 不是 与 为什么 也 了 了吗 什么 什麼 从 他 他们 们 但是 你 你们 你好 再 又 "
    "可以 可以吗 吗 吧 告诉 呢 和 哪个 哪些 哪里 啊 因为 在 "
    "多少 她 好的 如何 如果 它 对 对吗 就 就是 帮忙 帮我 应该 很 怎么 怎样 怎麼 想要 我 我们 我們 "
    "所以 把 是 是否 是的 没有 為什麼 然后 现在 的 的话 着 繼續 "
    "给我 继续 能不能 能否 被 要 請 請問 謝謝 让 请 请问 谢谢 还 还是 这 这个 这些 这段 这里 這個 "
    "那 那个 那些 那個 那段 那里 都 需要";

constexpr std::string_view japanesePhrases =
    "あの あり ありがとう ある あれ いいえ いくつ いた いつ いま いる おしえて おねがい "
    "お願いします お願い致します か から が ください ここ こと この これ こんにちは "
    "ございます した して しました します しません すべき する そこ その それ ために ための だった "
    "だれ って ていた ている てください てる で である できない できます "
    "できる でした です では ではなく でも と という とか ところ として とは どう どうして "
    "どうすれば どうやって どこ どの どのように どれ ない なかった なぜ なった "
    "など なに なる に について によって に関して ね の のか のが のに のは のを は はい へ ました "
    "ます ません まで も もう一回 もう一度 もの や よ より られ "
    "れる わ を 下さい 今 何か 何が 何の 何を 何故 教えて 次へ 的 続き 続けて 誰が";

constexpr std::string_view koreanPhrases =
    "감사 거기 것은 것을 것이 계속 그것 그래서 그러나 그런데 그리고 까지 나는 나요 네 누가 누구 "
    "는데 다시 대한 대해 되나요 됩니까 됩니다 드려 드립 때문 라고 라는 "
    "무슨 무엇 부탁 부터 습니까 습니다 안녕 어디 어떤 어떻게 언제 없는 없습 없어 에게 에는 에도 "
    "에서 여기 예요 우리 위한 위해 으로 응 이것 이라 이에요 이제 "
    "인가요 입니까 입니다 있나 있는 있습 있어 저것 저는 좋아 주세요 지금 지만 진행 하고 하기 "
    "하나요 하는 하면 하세요 하지만 합니까 합니다 해 해서 해주세요 해줘 "
    "했습니다 했어요";

constexpr std::string_view alphabetPhrases =
    "กรุณา กับ กี่ ก็ ของ ขอบคุณ ครับ ควร คะ คือ คุณ ค่ะ จะ จาก ฉัน ช่วย ซึ่ง ด้วย ตกลง ต่อ ต่อไป "
    "ต้อง ถ้า ทำต่อ ทำไม ที่ ที่ไหน นะ นั้น นี้ ผม มี ยังไง ลอง ว่า สวัสดี สำหรับ หน่อย หรือ หาก "
    "อยู่ อย่างไร อะไร อีกครั้ง เขา เท่าไร เท่าไหร่ เป็น เพราะ เพื่อ เมื่อไร เมื่อไหร่ เรา "
    "เหล่านี้ แต่ และ แล้ว โดย โอเค ใคร ใช่ ใน ให้ ได้ ได้ไหม ไม่ ไม่ใช่ ไหม ກະລຸນາ ຂອງ ຂອບໃຈ "
    "ສືບຕໍ່ ຫຍັງ ແມ່ນ ແລະ ကျေးဇူး ဆက် ပါ ဘာ និង បន្ត របស់ សូម អរគុណ អ្វី";

using Contains = bool (*)(std::string_view word);

/// The language at each place has the bit of that place. English is the first.
constexpr auto languages = std::to_array<Contains>({
    &WordList<englishWords>::contains,
    &WordList<germanWords>::contains,
    &WordList<frenchWords>::contains,
    &WordList<spanishWords>::contains,
    &WordList<italianWords>::contains,
    &WordList<portugueseWords>::contains,
    &WordList<dutchWords>::contains,
    &WordList<russianWords>::contains,
    &WordList<polishWords>::contains,
    &WordList<turkishWords>::contains,
    &WordList<vietnameseWords>::contains,
    &WordList<hindiWords>::contains,
    &WordList<arabicWords>::contains,
    &WordList<greekWords>::contains,
});

}  // namespace

Languages languagesOf(std::string_view word) {
  Languages found = 0;
  for (std::size_t at = 0; at < languages.size(); ++at) {
    if (languages.at(at)(word)) found |= Languages{1} << at;
  }
  return found;
}

bool containsPhrase(std::string_view phrase) {
  return WordList<chinesePhrases>::contains(phrase) ||
         WordList<japanesePhrases>::contains(phrase) || WordList<koreanPhrases>::contains(phrase) ||
         WordList<alphabetPhrases>::contains(phrase);
}

}  // namespace quillstead::server::StopWords
