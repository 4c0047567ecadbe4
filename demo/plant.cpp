#include "demo/plant.h"

#include <array>

namespace korvel::demo {

namespace {

constexpr std::array dairyProjects = {
    Project{"{5B0E6A0C-2F41-4D63-9C0B-7A1D3E5F9021}", "KV_Pasteurisation_CS", "KV_Pasteurisation_RT"},
    Project{"{A9C3D714-86E2-4B1F-8D57-0F62B4C81E3A}", "KV_Abfüllung_CS", "KV_Abfüllung_RT"},
    Project{"{1D72F8E5-93AB-47C0-A6E4-58B90C3D7F16}", "KV_Boiler_House_CS", "KV_Boiler_House_RT"},
    Project{"{E4406B9F-5C18-4E7D-B2A3-C6F1D8093B75}", "KV_Water_Treatment_CS", "KV_Water_Treatment_RT"},
};

constexpr std::array dairyPeople = {
    Person{"jhuebner", "Jörg Hübner", Role::engineer, Tongue::german},
    Person{"smueller", "Sabine Müller-Weiß", Role::engineer, Tongue::german},
    Person{"dobrien", "Deirdre O'Brien", Role::engineer, Tongue::english},
    Person{"fleveque", "François Lévêque", Role::engineer, Tongue::french},
    Person{"spapadop", "Σοφία Παπαδοπούλου", Role::engineer, Tongue::greek},
    Person{"asmirnova", "Анна Смирнова", Role::engineer, Tongue::russian},
    Person{"kschmidt", "Karl Schmidt", Role::operatorOnShift, Tongue::german, 0},
    Person{"mkowalska", "Małgorzata Kowalska", Role::operatorOnShift, Tongue::polish, 0},
    Person{"lrossi", "Luca Rossi", Role::operatorOnShift, Tongue::italian, 1},
    Person{"tgruber", "Toni Größer", Role::operatorOnShift, Tongue::german, 1},
    Person{"jnunez", "José Núñez", Role::operatorOnShift, Tongue::spanish, 2},
    Person{"hbauer", "Heike Bäuerle", Role::operatorOnShift, Tongue::german, 2},
    Person{"pwalsh", "Peter Walsh", Role::operatorOnShift, Tongue::english, 3},
    Person{"iyilmaz", "İbrahim Yılmaz", Role::operatorOnShift, Tongue::german, 3},
    Person{"qvogt", "Dr. Ute Vogt", Role::quality, Tongue::german},
    Person{"qhansen", "Søren Hansen", Role::quality, Tongue::english},
    Person{"admin", "Plant Administrator", Role::administrator, Tongue::english},
};

constexpr std::array<std::string_view, 3> dairyEngineeringPcs = {"DAIRY-ES1", "DAIRY-ES2", "DAIRY-NB07"};
constexpr std::array<std::string_view, 5> dairyOperatorPcs = {"DAIRY-OS1", "DAIRY-OS2", "DAIRY-OS3", "LEITWARTE-1",
                                                              "LEITWARTE-2"};

constexpr std::array groupProjects = {
    Project{"{70F2C1B8-3D95-4A6E-8E11-94B7A05D2C63}", "KV_MU_Synthesis_CS", "KV_MU_Synthesis_RT"},
    Project{"{C85D0E37-61FA-4293-9B7C-2E8F4016AD59}", "KV_MU_Tank_Farm_CS", "KV_MU_Tank_Farm_RT"},
    Project{"{0A94E6D2-B75C-4F38-A1D0-63C92F8B7E14}", "KV_MU_Packaging_CS", "KV_MU_Packaging_RT"},
    Project{"{9F13B8C6-0E2D-45A7-B684-D7510CEA39F2}", "KV_MU_蒸馏_CS", "KV_MU_蒸馏_RT"},
    Project{"{36E7A5D1-F804-4C9B-8F2A-1B6D93C70E48}", "KV_MU_Utilities_CS", "KV_MU_Utilities_RT"},
};

constexpr std::array groupPeople = {
    Person{"wwei", "王伟", Role::engineer, Tongue::chinese},
    Person{"lna", "李娜", Role::engineer, Tongue::chinese},
    Person{"ktanaka", "田中 健", Role::engineer, Tongue::japanese},
    Person{"ysato", "佐藤 由美", Role::engineer, Tongue::japanese},
    Person{"lhaddad", "ليلى حداد", Role::engineer, Tongue::arabic},
    Person{"ivolkov", "Игорь Волков", Role::engineer, Tongue::russian},
    Person{"cgarcia", "Carmen García", Role::engineer, Tongue::spanish},
    Person{"bweber", "Björn Weber", Role::engineer, Tongue::german},
    Person{"gmartin", "Geneviève Martin", Role::operatorOnShift, Tongue::french, 0},
    Person{"nkhalil", "نور خليل", Role::operatorOnShift, Tongue::arabic, 0},
    Person{"gferrari", "Giulia Ferrari", Role::operatorOnShift, Tongue::italian, 1},
    Person{"zlei", "张磊", Role::operatorOnShift, Tongue::chinese, 1},
    Person{"akowal", "Łukasz Kowal", Role::operatorOnShift, Tongue::polish, 2},
    Person{"mjones", "Megan Jones", Role::operatorOnShift, Tongue::english, 2},
    Person{"opetrova", "Ольга Петрова", Role::operatorOnShift, Tongue::russian, 3},
    Person{"dnikos", "Δημήτρης Νίκου", Role::operatorOnShift, Tongue::greek, 3},
    Person{"qlindqvist", "Åsa Lindqvist", Role::quality, Tongue::english},
    Person{"svcadmin", "Group Administrator", Role::administrator, Tongue::english},
};

constexpr std::array<std::string_view, 6> groupEngineeringPcs = {"GRP-MU-ES01", "GRP-MU-ES02", "GRP-MU-ES03",
                                                                 "GRP-MU-ES04", "GRP-MU-ES05", "GRP-MU-ES06"};
constexpr std::array<std::string_view, 4> groupOperatorPcs = {"GRP-OS-A", "GRP-OS-B", "GRP-OS-C", "GRP-OS-D"};

constexpr std::array plantQuantities = {
    Quantity{"TIC", "°C", 1, 40, 1400},    Quantity{"PIC", "bar", 2, 20, 1600}, Quantity{"FIC", "m³/h", 1, 5, 1200},
    Quantity{"LIC", "%", 1, 0, 1000},      Quantity{"QIC", "pH", 2, 200, 1200}, Quantity{"SIC", "1/min", 0, 50, 3000},
    Quantity{"AIC", "µS/cm", 0, 10, 2500}, Quantity{"WIC", "kg", 1, 0, 25000},  Quantity{"PDI", "mbar", 1, -200, 800},
};

constexpr std::array<std::string_view, 7> germanComments = {
    "Grenzwert nach Rücksprache mit der Qualitätssicherung geändert",
    "Prüfung gemäß Wartungsplan, Fühler getauscht",
    "Änderungsantrag ÄA-0417, genehmigt durch Dr. Vogt",
    "Störung behoben; Ventil öffnet wieder vollständig",
    "Überfüllschutz geprüft – in Ordnung",
    "Schichtübergabe: Anlage läuft, keine Auffälligkeiten",
    "Rezept an größere Charge angepasst (Faktor 1,25)"};
constexpr std::array<std::string_view, 7> englishComments = {"Change request CR-1182, approved",
                                                             "Operator asked for a longer delay, nuisance alarm",
                                                             "Sensor recalibrated, see certificate 03/2217",
                                                             "Temporary change for cleaning test; to be reverted",
                                                             "Value copied from line 2, \"as discussed\"",
                                                             "Typing error corrected",
                                                             "Shift handover, nothing to report"};
constexpr std::array<std::string_view, 4> frenchComments = {
    "Seuil relevé après l'étalonnage de la sonde", "Modifié à la demande de l'équipe qualité",
    "Vanne réparée, essai concluant", "Ancienne valeur rétablie, déjà signalé le mois dernier"};
constexpr std::array<std::string_view, 4> spanishComments = {
    "Límite ajustado según instrucción de calidad", "Señal inestable, sensor sustituido",
    "Prueba de limpieza del año 2004", "Válvula comprobada: ¿quién la cerró?"};
constexpr std::array<std::string_view, 4> italianComments = {
    "Soglia modificata dopo la taratura", "Perché l'allarme suonava di continuo",
    "Ricetta adattata al lotto più grande", "Pompa sostituita, verificata la portata"};
constexpr std::array<std::string_view, 4> greekComments = {
    "Αλλαγή ορίου μετά από βαθμονόμηση", "Έλεγχος αισθητήρα, όλα εντάξει", "Διόρθωση λάθους πληκτρολόγησης",
    "Δοκιμή καθαρισμού δεξαμενής"};
constexpr std::array<std::string_view, 4> russianComments = {
    "Уставка изменена по указанию технолога", "Датчик заменён, проверка выполнена", "Исправлена опечатка",
    "Временное изменение на период испытаний"};
constexpr std::array<std::string_view, 4> chineseComments = {"根据质量部门要求修改上限", "传感器已校准",
                                                             "临时更改,试验后恢复", "配方已按新批次调整"};
constexpr std::array<std::string_view, 4> japaneseComments = {
    "品質管理部の依頼により上限値を変更", "センサーを交換しました", "入力ミスを修正", "洗浄テストのための一時変更"};
constexpr std::array<std::string_view, 4> arabicComments = {"تم تعديل الحد الأعلى بعد المعايرة", "تم استبدال الحساس",
                                                            "تصحيح خطأ في الإدخال", "تغيير مؤقت أثناء الاختبار"};
constexpr std::array<std::string_view, 4> polishComments = {"Zmieniono próg po kalibracji czujnika",
                                                            "Zawór sprawdzony, działa prawidłowo",
                                                            "Poprawiono błąd zapisu", "Gotowe 👍 dziękuję za pomoc"};

}  // namespace

const Plant& singleUserPlant() noexcept {
  static constexpr Plant plant{"DAIRY",          dairyProjects, dairyPeople, dairyEngineeringPcs,
                               dairyOperatorPcs, "DAIRY-SRV1",  45,          0x5EED0001};
  return plant;
}

const Plant& multiUserPlant() noexcept {
  static constexpr Plant plant{"GROUP",          groupProjects, groupPeople, groupEngineeringPcs,
                               groupOperatorPcs, "GRP-SRV-MU",  85,          0x5EED0002};
  return plant;
}

std::span<const Quantity> quantities() noexcept {
  return plantQuantities;
}

std::span<const std::string_view> commentsIn(Tongue tongue) noexcept {
  switch (tongue) {
    case Tongue::german:
      return germanComments;
    case Tongue::english:
      return englishComments;
    case Tongue::french:
      return frenchComments;
    case Tongue::spanish:
      return spanishComments;
    case Tongue::italian:
      return italianComments;
    case Tongue::greek:
      return greekComments;
    case Tongue::russian:
      return russianComments;
    case Tongue::chinese:
      return chineseComments;
    case Tongue::japanese:
      return japaneseComments;
    case Tongue::arabic:
      return arabicComments;
    case Tongue::polish:
      return polishComments;
  }
  return {};
}

}  // namespace korvel::demo
