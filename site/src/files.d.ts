declare module "*.ls" {
    const text: string;
    export default text;
}
