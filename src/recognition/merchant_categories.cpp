#include "recognition/merchant_categories.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <vector>

#include "names/name_words.h"
#include "names/standard_categories.h"
#include "recognition/chain_names.h"

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
     "insurance assurance takaful mutuelle versicherung~ seguro seguros sigorta asuransi bima "
     "страхов~ страховка تامين بيمه 保险 보험"},
    {"Charity",
     "charity charities charitable donation donations zakat sadaqa orphan~ relief مؤسسه خيري خيريه "
     "صدقه "
     "زكاه تبرع~ благотворит~"},
    {"Health",
     "pharmac~ chemist clinic hospital dental dentist medical lab labs laborator~ diagnostic~ "
     "optic~ optometr~ بصريات physio~ doctor gym fitness farmacia~ pharmacie apotheke apotek "
     "eczane~ "
     "drogaria clinica klinik hastane~ sakit "
     "صيدلي~ مستشفي عياده داروخانه аптек~ клиник~ стоматолог~ больниц~ 药房 药店 医院 약국 병원 "
     "의원 โรงพยาบาล"},
    {"Education",
     "school university college academy institute course~ tuition kindergarten nursery montessori "
     "escola escuela colegio universidad universidade universitas ecole universite schule okul~ "
     "universite~ sekolah مدرسه مدارس جامعه كليه حضانه школа университет 学校 大学 학원 대학교"},
    {"Entertainment",
     "العاب cinema~ theatre theater stream~ music games gaming bowling arcade museum concert cine "
     "kino "
     "sinema bioskop سينما مسرح кино кинотеатр театр 电影 영화"},
    {"Dining",
     "cafe cafes caffe coffee restaurant~ kitchen grill pizza pizzeria~ burger burgers roastery "
     "diner eatery bistro steak~ sushi shawarma kebab kabab tacos taqueria bbq tandoor~ biryani "
     "dhaba ristorante trattoria osteria taverna lokanta~ kafe cafeteria restoran rumahmakan "
     "warung "
     "bakso lanchonete churrascaria fonda مطعم مطاعم كشري حلويات كافيه مقهي قهوه رستوران کافه كافه "
     "ресторан "
     "кафе кофе~ столов~ суши бургер~ шашлы~ 餐厅 餐饮 咖啡 식당 카페 커피 치킨"},
    {"Groceries",
     "market markets supermarket~ hypermarket~ minimarket~ minimart grocer~ grocery groceries "
     "foods "
     "baker~ butcher~ mart kirana provision~ supermercado~ mercado mercadinho hortifruti panaderia "
     "padaria carniceria boulangerie boucherie epicerie supermarche backerei metzgerei bakkal~ "
     "manav "
     "kasap firin pasar warungsembako سوق ماركت بقال~ مخبز مخابز هايبر سوبر سوبرماركت تموينات "
     "جزاره حانوت "
     "نانوایی فروشگاه продукт~ гастроном супермаркет пекарн~ мясн~ 超市 便利店 마트 편의점"},
    {"Travel",
     "hotel~ airline~ airways travel~ tours hostel resort inn motel hotels otel "
     "hoteis viagens voyages reisen فندق طيران سفر سياحه гостиниц~ отель авиа~ турагент~ 酒店 航空 "
     "호텔 항공"},
    {"Transport",
     "taxi taxis cab cabs metro bus rail~ railways train fuel gas petrol petroleum parking ride~ "
     "rides station stations toll tolls car garage autos ferry filling servicestation gasolinera~ "
     "posto combustiveis estacionamento peaje pedagio benzin~ akaryakit otopark spbu parkir ojek "
     "تاكسي مترو بنزين وقود محطه محطات مواقف جايگاه азс такси метро бензин парков~ заправка 加油站 "
     "停车 地铁 주유소 택시 주차"},
    {"Phone",
     "telecom~ mobile cellular airtime broadband internet recharge fibre fiber telefon~ celular "
     "pulsa اتصالات موبايل شحن انترنت связь интернет 通信 통신"},
    {"Utilities",
     "electric~ water energy bill bills power utility utilities sewerage electricidad eletrica "
     "agua "
     "luz energia elektrik listrik كهرباء مياه المياه فاتوره غاز الغاز электр~ водоканал "
     "жкх энерго~ 电力 水务 燃气 전력 수도"},
    {"Loan",
     "loan loans finance financing lending kredit credito emprestimo قرض تمويل кредит~ 贷款"},
    {"Rent", "rent landlord lease alquiler aluguel loyer kira sewa ايجار аренда 房租 월세"},
    {"Shopping",
     "store~ mall shop~ boutique fashion books~ bookshop electronics furniture tailor~ jewel~ "
     "gifts "
     "cosmetic~ beauty salon barber~ perfume~ garments textile~ hardware toys shoes tienda~ loja~ "
     "magazin~ magasin negozio moda giyim toko متجر مكتبه مول محلات ازياء مجوهرات магазин~ одежд~ "
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
  // word.
  [[nodiscard]] std::size_t placeOf(std::string_view word) const {
    constexpr std::string_view article = "ال";
    std::size_t place = placeOfBare(word);
    if (word.starts_with(article)) {
      place = std::min(place, placeOfBare(word.substr(article.size())));
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
