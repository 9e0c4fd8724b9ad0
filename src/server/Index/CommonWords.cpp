#include "server/Index/CommonWords.h"

#include "server/Index/WordList.h"

namespace quillstead::server::CommonWords {

namespace {

constexpr std::string_view englishWords =
    "add added adding additional adds answer answers append apply argument arguments array ask "
    "available bad begin best better big bit branch break broke broken bug bugs build builds "
    "built call called calls case cases change changed changes check checked checks choose class "
    "clean clear close code command comment comments commit commits compare complete copy count "
    "create created current cut data day days default define delete describe detail details diff "
    "difference different document drop edit empty end enter error errors example examples exist "
    "existing explain explanation fail failed failing fails failure field file files find finish "
    "finished finishing first fix fixed fixes fixing folder follow format found full function "
    "functions generate good group handle hard hour hours idea implement implementation "
    "implemented important improve include info information input insert int issue issues item "
    "items job key kind large last leave left level line lines list lists load log long main "
    "makes match message method methods minute minutes module move moved multiple name named "
    "names new next note number object old open opens option options output page parameter part "
    "pass path people place point possible press print problem problems program project pull push "
    "question questions quick read reading reads ready reason refactor remove removed rename "
    "replace request response result results return returns review rewrite run running runs save "
    "script search second section select send sentence separate set setting settings setup ship "
    "short show shows simple simplify single slow small snippet solution space start started "
    "state step steps stop string study style suggest summary support system task tasks test "
    "tested testing tests text third time times today tomorrow top total turn type types "
    "understand update updated updates user users value values variable variables version view "
    "wait week word words work working works world write writing written wrong year yesterday";

constexpr std::string_view germanWords =
    "aktuell anzeigen aufgabe aufruf ausführen ausgabe beispiel bereich code datei dateien daten "
    "eingabe ende entferne entfernen ergebnis erkläre erklären erstelle erstellen fehler feld "
    "frage fragen funktion funktionen füge geht heute hinzu klasse korrigiere korrigieren lese "
    "lesen liste lösche löschen lösung methode morgen name neu neue neuen neuer neues nächste "
    "nächsten ordner probiere problem projekt prüfe prüfen schreib schreibe schreiben schritt "
    "seite starte starten teil test teste testen tests text typ variable wert werte zahl zeig "
    "zeige zeigen zeile zeilen zeit ziel zusammenfassung ändere ändern öffne öffnen überprüfe";

constexpr std::string_view frenchWords =
    "affiche afficher ajoute ajouter appel change changer classe code commande corrige corriger "
    "crée créer dernier dernière données efface erreur erreurs essaie essayer exemple explication "
    "explique expliquer fichier fichiers fin fonction fonctions lance lancer ligne lignes lire "
    "lis liste modifie modifier montre montrer méthode nom nombre nouveau nouveaux nouvelle ouvre "
    "ouvrir page partie problème programme projet question relance retire répare résultat résume "
    "suite supprime supprimer temps test teste tester tests texte type tâche valeur variable "
    "vérifie vérifier écrire écris étape";

constexpr std::string_view spanishWords =
    "abre abrir agrega agregar archivo archivos arregla arreglar añade añadir borra borrar busca "
    "buscar cambia cambiar cambios clase comando comprueba corregir corrige crea crear código "
    "dato datos ejecuta ejecutar ejemplo elimina eliminar error errores escribe escribir explica "
    "explicar fallo fichero fin funciones función intenta lee leer lista línea líneas modifica "
    "mostrar muestra método nombre nueva nuevo número parte paso pregunta problema programa "
    "proyecto prueba pruebas página quita resultado revisa siguiente tarea texto tiempo tipo "
    "valor variable ver verifica última último";

constexpr std::string_view italianWords =
    "aggiungere aggiungi apri aprire cambia cambiare cancella classe codice comando controlla "
    "correggere correggi crea creare dati elimina errore errori esegui esempio file funzione "
    "leggi lista metodo modifica mostra nome numero nuova nuovo pagina parte passo problema "
    "progetto prova riga righe rimuovi risultato scrivi spiega spiegami tempo testo tipo valore "
    "verifica";

constexpr std::string_view portugueseWords =
    "abra abrir adicionar adicione altera apaga arquivo arquivos classe comando corrigir corrija "
    "criar crie código dados escreva executar execute exemplo explique função funções leia linha "
    "linhas lista mostre muda mude método nome nova novo número parte passo pergunta problema "
    "projeto página remova resultado rode tarefa tempo tente teste testes texto tipo valor "
    "verifique";

constexpr std::string_view dutchWords =
    "bestand bestanden code controleer fout fouten functie herstel laat lees lijst naam nieuw "
    "nieuwe open pas probeer probleem regel regels resultaat schrijf stap taak tekst test testen "
    "toon type uitleg verander verwijder voeg waarde wijzig zien";

constexpr std::string_view russianWords =
    "вывод выполни данные добавить добавь задача запусти имя исправить исправь класс код команда "
    "метод напиши новая новый объясни открой ошибка ошибки ошибку переименуй покажи пример "
    "проблема проверь проект прочитай результат создай список строка строки тест тесты тип удали "
    "удалить файл файла файлы функции функцию функция шаг";

constexpr std::string_view othersWords =
    "açıkla błąd chạy değiştir dodaj dosya dosyayı dòng düzelt ekle fonksiyon fonksiyonu funkcja "
    "funkcję giải göster hata hatayı hàm kiểm kod kodu lỗi mã napisz napraw plik pliki pokaż sil "
    "sprawdź sửa test testleri testy thích thử tệp uruchom usuń viết wyjaśnij xóa zmień çalıştır "
    "αρχείο δείξε διόρθωσε εξήγησε κώδικα πρόσθεσε συνάρτηση σφάλμα τεστ أصلح أضف احذف اختبار "
    "اختبارات اشرح اعرض اكتب الاختبار الاختبارات الخطأ الكود الملف خطأ دالة شغل غير كود ملف कोड "
    "जोड़ें टेस्ट ठीक त्रुटि दिखाइए दिखाएं दिखाओ फ़ंक्शन फ़ाइल फाइल बताइए बताएं बदलें बदलो लिखें "
    "लिखो समझाएं हटाएं";

constexpr std::string_view chinesePhrases =
    "代码 修复 修改 做 内容 写 函式 函数 创建 删除 功能 打开 提交 改 文件 方法 显示 更新 查看 检查 "
    "檔案 测试 添加 測試 看 程式 解释 运行 錯誤 错误 问题 项目";

constexpr std::string_view japanesePhrases =
    "エラー コミット コード テスト バグ ファイル プッシュ 作成 修正 削除 問題 変え 変更 実行 方法 "
    "書いて 直して 確認 行 表示 見せて 説明 読んで 追加 開いて 関数";

constexpr std::string_view koreanPhrases =
    "고쳐 문제 방법 버그 변경 보여 삭제 설명 수정 실행 에러 열어 오류 읽어 작성 추가 커밋 코드 "
    "테스트 파일 표시 푸시 함수 확인";

constexpr std::string_view alphabetPhrases =
    "ข้อผิดพลาด ตรวจสอบ ทดสอบ บั๊ก ปัญหา ฟังก์ชัน รัน ลบ วิธี สร้าง อธิบาย อ่าน เขียน เทสต์ "
    "เปลี่ยน เปิด เพิ่ม แก้ แก้ไข แสดง โค้ด ไฟล์";

}  // namespace

bool contains(std::string_view word) {
  return WordList<englishWords>::contains(word) || WordList<germanWords>::contains(word) ||
         WordList<frenchWords>::contains(word) || WordList<spanishWords>::contains(word) ||
         WordList<italianWords>::contains(word) || WordList<portugueseWords>::contains(word) ||
         WordList<dutchWords>::contains(word) || WordList<russianWords>::contains(word) ||
         WordList<othersWords>::contains(word);
}

bool containsPhrase(std::string_view phrase) {
  return WordList<chinesePhrases>::contains(phrase) ||
         WordList<japanesePhrases>::contains(phrase) || WordList<koreanPhrases>::contains(phrase) ||
         WordList<alphabetPhrases>::contains(phrase);
}

}  // namespace quillstead::server::CommonWords
