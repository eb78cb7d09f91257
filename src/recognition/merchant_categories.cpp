#include "recognition/merchant_categories.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <vector>

#include "names/name_words.h"
#include "names/standard_categories.h"
#include "recognition/chain_names.h"
#include "recognition/message_items.h"

namespace kivo::recognition {
namespace {

struct ShopWords {
  std::string_view category;
  /// Folded, separated by blanks; a word with a closing "~" may go on.
  std::string_view words;
};

// In the order in which they are tried.
constexpr auto shopWords = std::to_array<ShopWords>({
    {"Insurance",
     "seguradora "
     "insurance assurance~ takaful mutuelle versicherung~ seguro seguros sigorta asuransi bima "
     "страхов~ страховка تامين التامين بيمه 保险 보험"},
    {"Charity",
     "mosque masjid church kirche temple spende~ ong "
     "charity charities charitable donation donations zakat sadaqa orphan~ relief مؤسسه خيري خيريه "
     "صدقه "
     "زكاه تبرع~ благотворит~"},
    {"Health",
     "hausarzt~ arztpraxis praxis sanitatshaus fitnessstudio~ laboratoire laboratorio gimnasio "
     "consultorio massage~ osteopath~ "
     "pharmac~ chemist~ clinic clinics hospital hospitals dental dentist~ medical~ lab labs "
     "laborator~ diagnostic~ "
     "optic~ optometr~ بصريات physio~ doctor gym fitness yoga pilates crossfit healthcare "
     "farmacia~ "
     "pharmacie~ apotheke~ apotek zahnarzt~ dentaire medecin odonto~ optika "
     "eczane~ "
     "drogaria~ clinica clinique klinik klinikum hastane~ sakit "
     "صيدلي~ مستشفي عياده معمل تحاليل داروخانه аптек~ клиник~ стоматолог~ больниц~ фитнес 药房 "
     "药店 "
     "医院 약국 병원 "
     "의원 โรงพยาบาล"},
    {"Education",
     "coaching fahrschule sprachschule kita creche autoescuela guarderia faculdade training "
     "school schools university college academy institute course~ tuition tutor~ kindergarten "
     "nursery montessori "
     "escola escuela colegio universidad universidade universitas ecole universite schule okul~ "
     "universite~ sekolah مدرسه مدارس جامعه كليه حضانه школа университет 学校 大学 학원 대학교"},
    {"Entertainment",
     "freizeitpark musee museo museu teatro zirkus circus comedy golf tennis swimming stadium "
     "stadion stade ملاهي "
     "العاب cinema~ theatre theater stream~ music games gaming bowling arcade museum concert cine "
     "kino karaoke zoo aquarium "
     "sinema bioskop سينما مسرح кино кинотеатр театр 电影 영화"},
    {"Dining",
     "chai tea chips curry chinese wok icecream biergarten eiscafe eisdiele cerveceria taberna "
     "chiringuito churreria pizzaria acai bagel~ bagels buka amala roasters عصاير "
     "cafe cafes caffe coffee coffees restaurant~ restaurante~ kitchen grill grills grillhouse "
     "pizza pizzas "
     "pizzeria~ burger burgers roastery "
     "diner eatery bistro bistrot brasserie creperie steak~ sushi ramen noodle noodles shawarma "
     "kebab kebabs kabab doner tacos taco "
     "taqueria bbq tandoor~ biryani biriyani dosa idli "
     "dhaba tiffin tiffins sweets mithai canteen juice juices smoothie~ sandwich~ snack snacks "
     "donut donuts doughnut~ creamery gelato gelateria pub tavern taproom brewery brewing bar "
     "broast chicken wings momo momos suya chops waakye kopi kopitiam carinderia pho "
     "tearoom teahouse chaiwala "
     "ristorante trattoria osteria taverna lokanta~ kafe kahve~ bufe pastane~ cafeteria "
     "restoran rumahmakan "
     "warung mamak "
     "bakso lanchonete churrascaria pastelaria sorveteria hamburgueria boteco jugueria cocina "
     "comedor asador arepa~ polleria fonda traiteur imbiss gasthaus gaststatte wirtshaus "
     "مطعم مطاعم كشري حلويات حلواني كافيه مقهي قهوه عصير عصائر شاورما مشويات فلافل فول بيتزا برجر "
     "بروست كافتيريا رستوران کافه كافه "
     "ресторан "
     "кафе кофе~ кав'ярня кавярня столов~ суши бургер~ шашлы~ пиццери~ піцері~ донер чайхана 餐厅 "
     "餐饮 咖啡 面馆 火锅 奶茶 小吃 茶餐廳 식당 카페 커피 치킨 "
     "포차 분식 โภชนา กาแฟ"},
    {"Groceries",
     "getrankemarkt hofladen minimercado fishmonger~ liquor wines weinhandlung اسواق "
     "market markets supermarket~ hypermarket~ hypermart superstore superstores hyper super "
     "superette minimarket~ minimart grocer~ grocery groceries "
     "foods fresh freshmart mart fruit fruits vegetable~ dairy meats butchery greengrocer~ "
     "cooperative coop "
     "baker~ butcher~ kirana provision~ sabzi supermercado~ mercado mercadinho hortifruti "
     "panaderia "
     "padaria carniceria fruteria pescaderia verduleria abarrotes bodega colmado acougue atacadao "
     "sacolao boulangerie boucherie charcuterie fromagerie primeur epicerie supermarche "
     "backerei metzgerei markt bakkal~ "
     "manav "
     "kasap firin pasar swalayan warungsembako duka سوق ماركت بقال~ مخبز مخابز هايبر سوبر "
     "سوبرماركت تموينات "
     "تعاونيه جزاره خضار فواكه حانوت "
     "نانوایی فروشگاه продукт~ гастроном супермаркет пекарн~ мясн~ овощ~ 超市 便利店 마트 슈퍼 "
     "편의점"},
    {"Travel",
     "hostal pousada camping ferienwohnung gite cruise cruises "
     "hotel~ airline~ airways travel~ tours hostel resort inn motel hotels otel "
     "hoteis viagens voyages reisen reiseburo viajes فندق طيران سفر سياحه гостиниц~ отель авиа~ "
     "турагент~ "
     "酒店 航空 "
     "호텔 항공"},
    {"Transport",
     "autohaus kfz werkstatt taller موقف ورشه scooter~ "
     "taxi taxis cab cabs metro bus rail~ railways train fuel fuels gas petrol petroleum parking "
     "parkings "
     "ride~ "
     "rides station stations toll tolls car cars carwash garage auto autos tyre tyres tires ferry "
     "filling servicestation "
     "gasolinera~ "
     "posto combustiveis estacionamento estacionamiento tankstelle parkhaus peaje pedagio benzin~ "
     "akaryakit otopark spbu parkir ojek "
     "تاكسي مترو بنزين وقود محطه محطات مواقف جايگاه азс такси метро бензин парков~ автобус~ "
     "заправка "
     "加油站 "
     "停车 地铁 주유소 택시 주차"},
    {"Phone",
     "topup prepaid mobilfunk wifi "
     "telecom~ mobile cellular airtime broadband internet recharge fibre fiber telefon~ celular "
     "pulsa اتصالات موبايل شحن انترنت связь интернет 通信 통신"},
    {"Utilities",
     "waste energie aguas municipality كهرباي~ "
     "electric~ water energy bill bills power utility utilities sewerage electricidad eletrica "
     "agua stadtwerke wasserwerk~ strom "
     "luz energia elektrik listrik كهرباء مياه المياه فاتوره غاز الغاز электр~ водоканал "
     "жкх энерго~ 电力 水务 燃气 전력 수도 การไฟฟ้า~"},
    {"Loan",
     "loan loans finance financing lending kredit credito emprestimo قرض تمويل кредит~ 贷款"},
    {"Rent",
     "property properties wohnbau estate "
     "rent rents landlord lease lettings apartments realty immobilier~ hausverwaltung "
     "vermietung inmobiliaria imobiliaria alquiler aluguel loyer miete kira sewa ايجار عقارات "
     "аренда 房租 월세"},
    {"Fees", "levy charges commission komisi gebuhr gebuhren комиссия رسوم عموله"},
    {"Shopping",
     "garden saree~ modehaus schuh~ buchhandlung blumen baumarkt fleuriste chaussures "
     "quincaillerie calcados friseur~ coiffeur coiffure peluqueria salao barbearia صالون nails "
     "store~ mall shop~ boutique fashion fashions wear books~ bookshop electronics furniture "
     "furnishings "
     "tailor~ jewel~ "
     "gifts florist~ flowers stationer~ pets mobiles menswear womenswear footwear "
     "cosmetic~ beauty salon barber~ perfume~ garments textile~ hardware toys shoes tienda~ loja~ "
     "papelaria papeleria ferreteria zapateria libreria librairie livraria magazin~ magasin "
     "magaza~ magazasi negozio moda giyim toko متجر مكتبه مول محلات ازياء ملابس اثاث احذيه عطور "
     "هدايا "
     "مجوهرات "
     "магазин~ одежд~ "
     "商店 商场 백화점 상점"},
});

static_assert(std::ranges::all_of(shopWords, names::isStandardCategory, &ShopWords::category));

// The words of `shopWords`, each with the place of its category there.
class ShopIndex {
 public:
  static constexpr std::size_t none = shopWords.size();

  ShopIndex() {
    for (std::size_t place = 0; place < shopWords.size(); ++place) {
      std::string_view words = shopWords.at(place).words;
      while (!words.empty()) {
        const std::size_t end = std::min(words.find(' '), words.size());
        add(words.substr(0, end), place);
        words.remove_prefix(std::min(end + 1, words.size()));
      }
    }
  }

  // The first category with `word`; `none` without one. Arabic writes the article together with its
  // word, and Chinese, Korean and Thai write the name of a shop in front of it: "东方超市".
  [[nodiscard]] std::size_t placeOf(std::string_view word) const {
    constexpr std::string_view article = "ال";
    std::size_t place = placeOfBare(word);
    if (word.starts_with(article)) {
      place = std::min(place, placeOfBare(word.substr(article.size())));
    }
    constexpr std::string_view forThe = "لل";  // "سداد للحلويات"
    if (word.starts_with(forThe)) {
      place = std::min(place, placeOfBare(word.substr(forThe.size())));
    }
    constexpr std::size_t character = 3;  // bytes of one
    constexpr std::size_t longest = 10;   // characters
    for (std::size_t at = character; isUnspaced(word.substr(0, character)) &&
                                     at + character < word.size() && at < longest * character;
         at += character) {
      place = std::min(place, placeOfBare(word.substr(at)));
    }
    return place;
  }

 private:
  void add(std::string_view word, std::size_t place) {
    const bool open = word.ends_with('~');
    if (open) word.remove_suffix(1);
    if (!word.empty()) (open ? fronts_ : words_).emplace(word, place);  // the first place stays
  }

  [[nodiscard]] std::size_t placeOfBare(std::string_view word) const {
    const auto found = words_.find(word);
    std::size_t place = found == words_.end() ? none : found->second;
    for (std::size_t length = 1; length <= word.size(); ++length) {
      const auto front = fronts_.find(word.substr(0, length));
      if (front != fronts_.end()) place = std::min(place, front->second);
    }
    return place;
  }

  std::unordered_map<std::string_view, std::size_t> words_;
  std::unordered_map<std::string_view, std::size_t> fronts_;  // of words with a closing "~"
};

const ShopIndex& shopIndex() {
  static const ShopIndex index;
  return index;
}

std::string_view byShopWord(const std::vector<std::string>& words) {
  std::size_t place = ShopIndex::none;
  for (const std::string& word : words) place = std::min(place, shopIndex().placeOf(word));
  return place == ShopIndex::none ? std::string_view() : shopWords.at(place).category;
}

enum class Named { shop, shopOrPerson };

// "Orange Pharmacy" is a pharmacy: a word for a kind of shop decides before a chain's name of one
// word. The words of Shopping, such as "store" and "mall", decide after it.
std::string_view categoryOf(std::string_view name, Named named) {
  std::vector<std::string> words = names::foldedWords(name);
  if (!words.empty() && words.front() == "www") words.erase(words.begin());
  const Chain chain = chainIn(words);
  const bool whole = chain.words == words.size();
  if (whole || (chain.words > 1 && named == Named::shop)) return chain.category;
  const std::string_view byWord = byShopWord(words);
  const bool tells = !byWord.empty() && byWord != shopWords.back().category;
  return tells || chain.words == 0 || named == Named::shopOrPerson ? byWord : chain.category;
}

}  // namespace

std::string_view merchantCategory(std::string_view name) {
  const std::string_view category = categoryOf(name, Named::shop);
  const std::size_t asterisk = name.find('*');
  if (!category.empty() || asterisk == std::string_view::npos) return category;
  return categoryOf(name.substr(asterisk + 1), Named::shop);
}

std::string_view recipientCategory(std::string_view name) {
  return categoryOf(name, Named::shopOrPerson);
}

bool isShopWord(std::string_view word) { return shopIndex().placeOf(word) != ShopIndex::none; }

}  // namespace kivo::recognition
