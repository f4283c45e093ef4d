fn main() {
    println!("0.00");
}
